#include "QuellonUI/Tray/TrayPicture.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Tray/TrayDigits.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace quellon {

namespace {

/// The number as a shape that fills `room` as far as its proportions allow, in the middle of its bottom.
QPainterPath badgeShape(const std::string& text, const QRectF& room)
{
    const QPainterPath shape = trayDigits(text);
    const QRectF bounds = shape.boundingRect();
    if (bounds.isEmpty()) return {};
    const double scale = std::min(room.width() / bounds.width(), room.height() / bounds.height());
    QTransform transform;
    transform.translate(room.center().x(), room.bottom());
    transform.scale(scale, scale);
    transform.translate(-bounds.center().x(), -bounds.bottom());
    return transform.map(shape);
}

} // namespace

TrayPicture TrayPicture::of(const TrayModel& model, bool withBadge)
{
    return {model.menuBar.symbol, model.tint, withBadge ? model.badge : std::string{}};
}

QImage TrayPicture::image(int size) const
{
    QImage result{size, size, QImage::Format_ARGB32_Premultiplied};
    result.fill(Qt::transparent);
    QPainter painter{&result};
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = trayColour(tint);
    if (badge.empty()) {
        painter.drawPixmap(0, 0, symbolPixmap(symbol, size, colour, 1.0));
        return result;
    }
    // The text has the lower part. The symbol's own margin reaches beyond the top, so that more of it is left.
    const double textHeight = std::round(size * 0.36);
    const int symbolSize = static_cast<int>(std::round(size * 0.70));
    const int overlap = static_cast<int>(std::round(symbolSize * 0.07));
    painter.drawPixmap((size - symbolSize) / 2, -overlap, symbolPixmap(symbol, symbolSize, colour, 1.0));
    const QPainterPath shape = badgeShape(badge, {0.5, size - textHeight - 0.5, size - 1.0, textHeight});
    painter.fillPath(shape, trayColour(Tint::primary));
    return result;
}

QColor trayColour(Tint tint)
{
    switch (tint) {
    case Tint::green:
        return {0x2f, 0xb4, 0x57};
    case Tint::yellow:
    case Tint::orange:
        return {0xf2, 0x8c, 0x0b};
    case Tint::red:
        return {0xe5, 0x48, 0x4d};
    case Tint::blue:
        return {0x2d, 0x8c, 0xff};
    case Tint::primary:
    case Tint::secondary:
        break;
    }
    return {0x8a, 0x8a, 0x93};
}

} // namespace quellon
