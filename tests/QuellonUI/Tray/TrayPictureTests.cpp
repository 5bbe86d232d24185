#include "QuellonUI/Tray/TrayPicture.h"

#include "TrayModels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace quellon {
namespace {

/// How well two colours can be told apart: from 1, not at all, to 21, black on white.
double contrast(const QColor& one, const QColor& other)
{
    const auto light = [](const QColor& colour) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto [darker, brighter] = std::minmax({light(one), light(other)});
    return (brighter + 0.05) / (darker + 0.05);
}

/// How many pixels of these rows are painted.
int painted(const QImage& image, int from, int to)
{
    int count = 0;
    for (int y = from; y < to; ++y) {
        for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y).alpha() > 64 ? 1 : 0;
    }
    return count;
}

TEST(TrayPicture, coloursCanBeToldFromEveryPanel)
{
    for (const auto& row : tints.rows) {
        EXPECT_GE(contrast(trayColour(row.value), QColor{0xf2, 0xf2, 0xf4}), 2.1) << row.raw;
        EXPECT_GE(contrast(trayColour(row.value), QColor{0x2b, 0x2b, 0x2f}), 3.0) << row.raw;
    }
}

TEST(TrayPicture, theSymbolAloneOrWithABadge)
{
    const TrayModel model = testing::guardingModel();
    EXPECT_EQ(TrayPicture::of(model, true), (TrayPicture{"shield.lefthalf.filled", Tint::green, "43%"}));
    EXPECT_EQ(TrayPicture::of(model, false), (TrayPicture{"shield.lefthalf.filled", Tint::green, ""}));
    for (const int size : TrayPicture::sizes) {
        SCOPED_TRACE(size);
        for (const char* const badge : {"", "2", "43%", "100%"}) {
            const QImage image = TrayPicture{"shield.lefthalf.filled", Tint::green, badge}.image(size);
            EXPECT_EQ(image.size(), QSize(size, size));
            EXPECT_GT(painted(image, 0, size / 2), size) << "the symbol";
            EXPECT_GT(painted(image, size * 2 / 3, size), size / 4) << "what is below";
        }
    }
}

TEST(TrayPicture, itStaysWithinItsSquare)
{
    for (const char* const badge : {"1", "43%", "100%"}) {
        const QImage image = TrayPicture{"pause.circle.fill", Tint::orange, badge}.image(48);
        EXPECT_LT(painted(image, 0, 1), 24) << "the symbol is not cut at the top";
        // The text is grey.
        int grey = 0;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const QColor colour = image.pixelColor(x, y);
                grey += colour.alpha() > 200 && std::abs(colour.red() - colour.blue()) < 20 ? 1 : 0;
            }
        }
        EXPECT_GT(grey, 30) << badge;
    }
}

TEST(TrayPicture, aSymbolThatDoesNotExist)
{
    const QImage image = TrayPicture{"no.such.symbol", Tint::green, "7"}.image(32);
    EXPECT_EQ(painted(image, 0, 16), 0);
    EXPECT_GT(painted(image, 16, 32), 10);
}

} // namespace
} // namespace quellon
