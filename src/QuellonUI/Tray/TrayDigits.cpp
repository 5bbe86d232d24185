#include "QuellonUI/Tray/TrayDigits.h"

#include <QPainterPathStroker>
#include <QRectF>

namespace quellon {

namespace {

constexpr double weight = 2.2;
constexpr double gap = 1.3;

/// The middle of the pen's way, between 0 and 10 from top to bottom.
QPainterPath lowDigit(char character)
{
    QPainterPath way;
    switch (character) {
    case '0':
        way.addRoundedRect(QRectF{0, 0, 6, 10}, 3, 3);
        break;
    case '1':
        way.moveTo(0, 2.2);
        way.lineTo(2.6, 0);
        way.lineTo(2.6, 10);
        break;
    case '2':
        way.moveTo(0.2, 2.6);
        way.cubicTo(0.6, -0.9, 6, -0.9, 6, 2.9);
        way.cubicTo(6, 5.2, 2.6, 6.8, 0, 10);
        way.lineTo(6, 10);
        break;
    case '3':
        way.moveTo(0.3, 1.6);
        way.cubicTo(1.5, -0.6, 5.7, -0.5, 5.7, 2.4);
        way.cubicTo(5.7, 4.4, 4, 4.7, 2.4, 4.7);
        way.cubicTo(4.4, 4.7, 6, 5.3, 6, 7.2);
        way.cubicTo(6, 10.8, 1.2, 10.8, 0, 8.4);
        break;
    case '4':
        way.moveTo(4.6, 10);
        way.lineTo(4.6, 0);
        way.lineTo(0, 7);
        way.lineTo(6.4, 7);
        break;
    default:
        break;
    }
    return way;
}

QPainterPath highDigitOrPercent(char character)
{
    QPainterPath way;
    switch (character) {
    case '5':
        way.moveTo(5.5, 0);
        way.lineTo(1, 0);
        way.lineTo(0.6, 4.6);
        way.cubicTo(2.2, 3.2, 6, 3.4, 6, 6.7);
        way.cubicTo(6, 10.9, 1.2, 10.9, 0, 8.6);
        break;
    case '6':
        way.moveTo(4.6, 0);
        way.cubicTo(1.6, 1.6, 0, 4.2, 0, 6.8);
        way.addEllipse(QRectF{0, 3.9, 6, 6.1});
        break;
    case '7':
        way.moveTo(0, 0);
        way.lineTo(6, 0);
        way.lineTo(2.2, 10);
        break;
    case '8':
        way.addEllipse(QRectF{0.5, 0, 5, 4.6});
        way.addEllipse(QRectF{0, 4.6, 6, 5.4});
        break;
    case '9':
        way.addEllipse(QRectF{0, 0, 6, 6.1});
        way.moveTo(6, 3.2);
        way.cubicTo(6, 5.8, 4.4, 8.4, 1.4, 10);
        break;
    case '%':
        way.addEllipse(QRectF{0, 0.2, 3.2, 3.6});
        way.addEllipse(QRectF{5.4, 6.2, 3.2, 3.6});
        way.moveTo(7.4, 0.4);
        way.lineTo(1.2, 9.6);
        break;
    default:
        break;
    }
    return way;
}

QPainterPath stroke(char character)
{
    const QPainterPath way = character >= '0' && character < '5' ? lowDigit(character) : highDigitOrPercent(character);
    if (way.isEmpty()) return {};
    QPainterPathStroker pen;
    pen.setWidth(weight);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCurveThreshold(0.02);
    return pen.createStroke(way).simplified();
}

} // namespace

QPainterPath trayDigits(std::string_view text)
{
    QPainterPath result;
    double x = 0.0;
    for (const char character : text) {
        const QPainterPath shape = stroke(character);
        if (shape.isEmpty()) continue;
        const QRectF bounds = shape.boundingRect();
        result.addPath(shape.translated(x - bounds.left(), -(10.0 + weight / 2)));
        x += bounds.width() + gap;
    }
    return result;
}

} // namespace quellon
