#pragma once

#include "QuellonUI/Kit/Appearance.h"
#include "QuellonUI/Theme.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <cmath>
#include <utility>

namespace quellon {

/// Widgets in a light surrounding.
class KitTest : public testing::Test {
protected:
    KitTest() { Appearance::apply(false); }

    static void letItHappen()
    {
        for (int i = 0; i < 5; ++i) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
    }
    static void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& at)
    {
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event{type, QPointF{at}, QPointF{widget.mapToGlobal(at)}, button, buttons, Qt::NoModifier};
        QApplication::sendEvent(&widget, &event);
    }
    static void sendKey(QWidget& widget, QEvent::Type type, int key, bool repeats = false)
    {
        QKeyEvent event{type, key, Qt::NoModifier, {}, repeats};
        QApplication::sendEvent(&widget, &event);
    }
    static QImage grabbed(QWidget& widget, double ratio = 1.0)
    {
        QImage image{widget.size() * ratio, QImage::Format_ARGB32_Premultiplied};
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        widget.render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }
    /// How many pixels have just this colour.
    static int count(const QImage& image, const QColor& colour)
    {
        int result = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) result += image.pixelColor(x, y).rgba() == colour.rgba() ? 1 : 0;
        }
        return result;
    }
};

} // namespace quellon
