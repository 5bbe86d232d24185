#include "QuellonUI/Settings/Form/NumberEdit.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

class NumberEditTest : public testing::Test {
protected:
    NumberEditTest()
    {
        model_.suffix = "GB";
        model_.accessibilityLabel = "Monthly plan in gigabytes";
        model_.text = "30";
        edit_.setModel(model_);
    }

    FormNumber model_;
    NumberEdit edit_;
};

TEST_F(NumberEditTest, anEqualModelBringsItsTextBack)
{
    edit_.edit().setText(QStringLiteral("refused"));
    edit_.setModel(model_);
    EXPECT_EQ(edit_.edit().text(), QStringLiteral("30"));
}

TEST_F(NumberEditTest, aRefusalComesAndGoes)
{
    model_.text = "many";
    model_.refusal = "Enter a number.";
    edit_.setModel(model_);
    EXPECT_EQ(edit_.edit().accessibleName(), QStringLiteral("Monthly plan in gigabytes"));
    EXPECT_EQ(edit_.edit().accessibleDescription(), QStringLiteral("Enter a number."));
    EXPECT_FALSE(edit_.refusal().isHidden());
    model_.refusal.reset();
    edit_.setModel(model_);
    EXPECT_TRUE(edit_.edit().accessibleDescription().isEmpty());
    EXPECT_TRUE(edit_.refusal().isHidden());
}

} // namespace
} // namespace quellon
