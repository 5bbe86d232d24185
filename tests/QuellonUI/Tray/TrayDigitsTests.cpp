#include "QuellonUI/Tray/TrayDigits.h"

#include <gtest/gtest.h>

#include <string_view>

namespace quellon {
namespace {

TEST(TrayDigits, everyCharacterHasAShapeOfItsOwn)
{
    constexpr std::string_view all = "0123456789%";
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i]);
        const QPainterPath shape = trayDigits(all.substr(i, 1));
        ASSERT_FALSE(shape.isEmpty());
        EXPECT_NEAR(shape.boundingRect().left(), 0.0, 1e-6);
        EXPECT_NEAR(shape.boundingRect().bottom(), 0.0, 0.5) << "stands on the line";
        EXPECT_NEAR(shape.boundingRect().height(), 12.0, 0.8);
        for (std::size_t j = 0; j < i; ++j) EXPECT_NE(shape, trayDigits(all.substr(j, 1))) << all[j];
    }
}

TEST(TrayDigits, charactersStandBesideEachOther)
{
    const double four = trayDigits("4").boundingRect().width();
    const double three = trayDigits("3").boundingRect().width();
    const double both = trayDigits("43").boundingRect().width();
    EXPECT_GT(both, four + three);
    EXPECT_LT(both, four + three + 3);
}

TEST(TrayDigits, whatHasNoShapeIsLeftOut)
{
    EXPECT_TRUE(trayDigits("").isEmpty());
    EXPECT_TRUE(trayDigits("—x\xff ").isEmpty());
    EXPECT_EQ(trayDigits("4 3x"), trayDigits("43"));
}

} // namespace
} // namespace quellon
