#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>

namespace {

/// A square picture of so many pixels with nothing behind the drawing.
bool draw(QSvgRenderer& drawing, int size, const QString& file)
{
    QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    QPainter painter{&image};
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    return image.save(file, "PNG");
}

} // namespace

/// quellon-icons DRAWING [SIZE FILE]...: the drawing (SVG) as PNG pictures of so many pixels.
int main(int count, char** arguments)
{
    if (count < 4 || count % 2 != 0) {
        std::fputs("usage: quellon-icons DRAWING [SIZE FILE]...\n", stderr);
        return 2;
    }
    QSvgRenderer drawing{QString::fromLocal8Bit(arguments[1])};
    if (!drawing.isValid()) {
        std::fprintf(stderr, "quellon-icons: %s can't be drawn\n", arguments[1]);
        return 1;
    }
    for (int i = 2; i < count; i += 2) {
        const int size = QString::fromLocal8Bit(arguments[i]).toInt();
        if (size > 0 && draw(drawing, size, QString::fromLocal8Bit(arguments[i + 1]))) continue;
        std::fprintf(stderr, "quellon-icons: %s of %s pixels can't be written\n", arguments[i + 1], arguments[i]);
        return 1;
    }
    return 0;
}
