#include "QuellonUI/Settings/LookupSection.h"

#include <QApplication>
#include <QPushButton>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace quellon {
namespace {

/// A lookup in a window that has another button behind it.
class LookupSectionTest : public testing::Test {
protected:
    QWidget window_;
    QVBoxLayout* column_ = new QVBoxLayout{&window_};
    LookupSection* section_ = new LookupSection;
    QPushButton* other_ = new QPushButton;
    AppDetailModel::Unknown offer_;
    AppDetailModel::Unknown question_;

    LookupSectionTest()
    {
        offer_.explain = FormButton{"Explain online…", "Look up helperd online", {}};
        question_.consent = ExplainConsentRow::of("helperd", "computer");
        column_->addWidget(section_);
        column_->addWidget(other_);
        section_->setModel(offer_);
        window_.show();
        window_.activateWindow();
        QApplication::processEvents();
    }
    void focus(const char* name)
    {
        for (QWidget* const each : window_.findChildren<QWidget*>()) {
            if (each->accessibleName() == QString::fromUtf8(name)) each->setFocus();
        }
    }
    [[nodiscard]] std::string focused() const { return window_.focusWidget()->accessibleName().toStdString(); }
};

TEST_F(LookupSectionTest, theKeyboardGoesOnInTheQuestionAndBack)
{
    focus("Look up helperd online");
    section_->setModel(question_);
    EXPECT_EQ(focused(), "Decline online app lookups") << "what grants nothing";
    section_->setModel(offer_);
    EXPECT_EQ(focused(), "Look up helperd online");
}

TEST_F(LookupSectionTest, theKeyboardStaysWhereElseItIs)
{
    other_->setFocus();
    section_->setModel(question_);
    EXPECT_EQ(window_.focusWidget(), other_);
    focus("Allow online app lookups");
    AppDetailModel::Unknown underWay;
    underWay.lookingUp = "Looking it up…";
    section_->setModel(underWay);
    EXPECT_EQ(window_.focusWidget(), other_) << "there is nothing left to press";
}

TEST_F(LookupSectionTest, textsStandInLine)
{
    question_.failure = "No answer.";
    offer_.failure = "No answer.";
    for (const auto& model : {offer_, question_}) {
        section_->setModel(model);
        QApplication::processEvents();
        std::vector<int> lefts;
        for (QWidget* const each : section_->findChildren<QWidget*>()) {
            if (!each->isVisible()) continue;
            const int left = each->mapTo(section_, QPoint{}).x();
            if (auto* const text = qobject_cast<Paragraph*>(each))
                lefts.push_back(left + text->contentsMargins().left());
            else if (auto* const link = qobject_cast<LinkButton*>(each);
                     link != nullptr && link->accessibleName() != QStringLiteral("Decline online app lookups"))
                lefts.push_back(left + LinkButton::sidePadding);
        }
        ASSERT_GE(lefts.size(), 3U);
        for (const int each : lefts) EXPECT_EQ(each, LookupSection::inset);
    }
}

} // namespace
} // namespace quellon
