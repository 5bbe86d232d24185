#include "Canvas.h"
#include "Picture.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"

#include <QApplication>
#include <QDir>
#include <QPainter>

#include <algorithm>

namespace quellon {

namespace {

constexpr int sizes[] = {14, 16, 20, 32};
constexpr int gap = 12;
constexpr int columns = 4;

/// All symbols at every size that views use, by name.
QImage sheet()
{
    const QStringList files = QDir{QStringLiteral(":/symbols")}.entryList({QStringLiteral("*.svg")}, QDir::Files);
    const Theme& theme = Theme::of(QApplication::palette());
    constexpr int cellWidth = 240;
    constexpr int cellHeight = 64;
    const int rows = (static_cast<int>(files.size()) + columns - 1) / columns;
    QImage image = Canvas::empty({columns * cellWidth + gap, rows * cellHeight + gap}, theme.background);
    QPainter painter{&image};
    painter.setFont(Fonts::caption());
    for (int i = 0; i < files.size(); ++i) {
        const QString name = files[i].chopped(4);
        int left = gap + (i % columns) * cellWidth;
        const int top = gap + (i / columns) * cellHeight;
        painter.setPen(theme.secondaryText);
        painter.drawText(QRect{left, top + 36, cellWidth - gap, 20}, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(name, Qt::ElideMiddle, cellWidth - gap));
        for (const int size : sizes) {
            painter.drawPixmap(left, top + (32 - size) / 2,
                               symbolPixmap(name.toStdString(), size, theme.text, image.devicePixelRatio()));
            left += size + gap;
        }
    }
    return image;
}

/// The program's icon at the sizes of panels, menus and windows.
QImage icons()
{
    const QIcon icon{QStringLiteral(":/icons/quellon.svg")};
    std::vector<QImage> images;
    for (const int size : {16, 22, 24, 32, 48, 64, 128})
        images.push_back(icon.pixmap(QSize{size, size}, qApp->devicePixelRatio()).toImage());
    return Canvas::row(images, gap, gap, Theme::of(QApplication::palette()).background);
}

} // namespace

std::vector<Picture> symbolPictures()
{
    return {{QStringLiteral("symbols"), sheet}, {QStringLiteral("icons"), icons}};
}

} // namespace quellon
