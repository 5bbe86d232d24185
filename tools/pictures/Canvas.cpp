#include "Canvas.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <algorithm>

namespace quellon::Canvas {

QImage empty(const QSize& size, const QColor& ground)
{
    const double ratio = qApp->devicePixelRatio();
    QImage image{size * ratio, QImage::Format_ARGB32_Premultiplied};
    image.setDevicePixelRatio(ratio);
    image.fill(ground);
    return image;
}

QImage drawn(QWidget& widget)
{
    widget.show();
    // What a layout asks for in several steps, such as the height of wrapped text, is settled by then.
    for (int i = 0; i < 4; ++i) QApplication::processEvents();
    QPixmap pixmap{widget.size() * widget.devicePixelRatioF()};
    pixmap.setDevicePixelRatio(widget.devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    widget.render(&pixmap, {}, {}, QWidget::DrawWindowBackground | QWidget::DrawChildren | QWidget::IgnoreMask);
    widget.hide();
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QSize size(const QImage& picture)
{
    return picture.deviceIndependentSize().toSize();
}

QImage row(const std::vector<QImage>& pictures, int gap, int margin, const QColor& ground)
{
    QSize whole{2 * margin - gap, 0};
    for (const QImage& each : pictures) {
        whole.rwidth() += size(each).width() + gap;
        whole.setHeight(std::max(whole.height(), size(each).height() + 2 * margin));
    }
    QImage result = empty(whole, ground);
    QPainter painter{&result};
    int left = margin;
    for (const QImage& each : pictures) {
        painter.drawImage(QPoint{left, margin}, each);
        left += size(each).width() + gap;
    }
    return result;
}

QImage column(const std::vector<QImage>& pictures, const QColor& ground)
{
    QSize whole;
    for (const QImage& each : pictures)
        whole = {std::max(whole.width(), size(each).width()), std::max(whole.height(), 0) + size(each).height()};
    QImage result = empty(whole, ground);
    QPainter painter{&result};
    int top = 0;
    for (const QImage& each : pictures) {
        painter.drawImage(QPoint{0, top}, each);
        top += size(each).height();
    }
    return result;
}

QColor desktop()
{
    constexpr int middle = 128;
    const bool dark = QApplication::palette().color(QPalette::Window).lightness() < middle;
    return dark ? QColor{0x14, 0x17, 0x1d} : QColor{0xc9, 0xd3, 0xe0};
}

} // namespace quellon::Canvas
