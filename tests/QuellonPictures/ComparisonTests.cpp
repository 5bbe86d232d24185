#include "Comparison.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QString>

#include <gtest/gtest.h>

#include <algorithm>

namespace quellon {

namespace {

QImage written(const QString& text, QPoint at = {20, 40}, const QColor& colour = Qt::black)
{
    QImage image{200, 60, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::white);
    QPainter painter{&image};
    painter.setPen(colour);
    painter.drawText(at, text);
    return image;
}

} // namespace

TEST(Comparison, equalPicturesAreTheSame)
{
    const auto result = Comparison::compare(written(QStringLiteral("1.24 GB")), written(QStringLiteral("1.24 GB")));
    EXPECT_TRUE(result.sameSize);
    EXPECT_EQ(result.worst, 0.0);
    EXPECT_TRUE(Comparison::isSame(result));
}

TEST(Comparison, whatDiffers)
{
    const QImage plain = written(QStringLiteral("1.24 GB left"));
    const struct {
        const char* name;
        QImage other;
    } cases[] = {
        {"a digit", written(QStringLiteral("1.25 GB left"))},
        {"a letter", written(QStringLiteral("1.24 MB left"))},
        {"a letter too much", written(QStringLiteral("1.24 GB leftt"))},
        {"nothing there", written({})},
        {"one pixel lower", written(QStringLiteral("1.24 GB left"), {20, 41})},
        {"another colour", written(QStringLiteral("1.24 GB left"), {20, 40}, Qt::red)},
        {"in the last corner",
         [&] {
             QImage image = plain;
             QPainter{&image}.fillRect(190, 50, 10, 10, Qt::black);
             return image;
         }()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(Comparison::isSame(Comparison::compare(plain, c.other)));
        EXPECT_FALSE(Comparison::isSame(Comparison::compare(c.other, plain)));
    }
}

TEST(Comparison, anotherSizeDiffers)
{
    const QImage plain = written(QStringLiteral("1.24 GB"));
    EXPECT_FALSE(Comparison::isSame(Comparison::compare(plain, plain.copy(0, 0, 199, 60))));
    EXPECT_FALSE(Comparison::isSame(Comparison::compare(plain, plain.copy(0, 0, 200, 59))));
    EXPECT_FALSE(Comparison::isSame(Comparison::compare(plain, {})));
    EXPECT_FALSE(Comparison::isSame(Comparison::compare({}, {})));
}

TEST(Comparison, aBreathOfDifferenceEverywhereIsTheSame)
{
    const QImage plain = written(QStringLiteral("1.24 GB"));
    QImage fainter = plain;
    for (int y = 0; y < plain.height(); ++y)
        for (int x = 0; x < plain.width(); ++x) {
            QColor colour = plain.pixelColor(x, y);
            colour.setRed(std::max(0, colour.red() - 5));
            fainter.setPixelColor(x, y, colour);
        }
    const auto result = Comparison::compare(plain, fainter);
    EXPECT_GT(result.worst, 4.0);
    EXPECT_TRUE(Comparison::isSame(result));
}

TEST(Comparison, itTellsWhere)
{
    const QImage plain = written(QStringLiteral("1.24 GB"));
    QImage other = plain;
    QPainter{&other}.fillRect(120, 24, 12, 12, Qt::blue);
    const auto result = Comparison::compare(plain, other);
    EXPECT_EQ(result.where, (QPoint{120, 24}));
    EXPECT_EQ(result.worst, 255.0);
}

} // namespace quellon
