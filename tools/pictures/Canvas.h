#pragma once

#include <QColor>
#include <QImage>
#include <QSize>
#include <QWidget>

#include <vector>

/// Putting pictures together. Sizes are in points; pictures have as many pixels a point as the application.
namespace quellon::Canvas {

/// An empty picture.
[[nodiscard]] QImage empty(const QSize& size, const QColor& ground);
/// A window or a part of one, laid out and drawn.
[[nodiscard]] QImage drawn(QWidget& widget);
/// The size of a picture in points.
[[nodiscard]] QSize size(const QImage& picture);
/// One beside the other from the left, their tops in one line, with so much between and around them.
[[nodiscard]] QImage row(const std::vector<QImage>& pictures, int gap, int margin, const QColor& ground);
/// One below the other from the top, without anything between them.
[[nodiscard]] QImage column(const std::vector<QImage>& pictures, const QColor& ground);

/// What lies behind windows in pictures: a calm desktop.
[[nodiscard]] QColor desktop();

} // namespace quellon::Canvas
