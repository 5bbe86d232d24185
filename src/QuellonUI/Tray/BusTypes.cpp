#include "QuellonUI/Tray/BusTypes.h"

#include <QDBusMetaType>

namespace quellon::BusTypes {

namespace {

constexpr int pixelBytes = 4;

} // namespace

Pixmap Pixmap::of(const QImage& image)
{
    const QImage source = image.convertToFormat(QImage::Format_ARGB32);
    Pixmap result{source.width(), source.height(), {}};
    result.bytes.reserve(qsizetype{pixelBytes} * result.width * result.height);
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            const QRgb pixel = source.pixel(x, y);
            for (const int part : {qAlpha(pixel), qRed(pixel), qGreen(pixel), qBlue(pixel)}) {
                result.bytes.append(static_cast<char>(part));
            }
        }
    }
    return result;
}

QImage Pixmap::image() const
{
    if (width <= 0 || height <= 0 || bytes.size() != qsizetype{pixelBytes} * width * height) return {};
    QImage result{width, height, QImage::Format_ARGB32};
    qsizetype at = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, at += pixelBytes) {
            const auto part = [&](qsizetype index) { return static_cast<uchar>(bytes[at + index]); };
            result.setPixel(x, y, qRgba(part(1), part(2), part(3), part(0)));
        }
    }
    return result;
}

void registerAll()
{
    qRegisterMetaType<QDBusVariant>();
    qDBusRegisterMetaType<Pixmap>();
    qDBusRegisterMetaType<QList<Pixmap>>();
    qDBusRegisterMetaType<ToolTip>();
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<QList<MenuProperties>>();
    qDBusRegisterMetaType<MenuRemovals>();
    qDBusRegisterMetaType<QList<MenuRemovals>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
}

QDBusArgument& operator<<(QDBusArgument& to, const Pixmap& pixmap)
{
    to.beginStructure();
    to << pixmap.width << pixmap.height << pixmap.bytes;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, Pixmap& pixmap)
{
    from.beginStructure();
    from >> pixmap.width >> pixmap.height >> pixmap.bytes;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const ToolTip& toolTip)
{
    to.beginStructure();
    to << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, ToolTip& toolTip)
{
    from.beginStructure();
    from >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const MenuNode& node)
{
    to.beginStructure();
    to << node.id << node.properties;
    to.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const MenuNode& child : node.children) to << QDBusVariant{QVariant::fromValue(child)};
    to.endArray();
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, MenuNode& node)
{
    from.beginStructure();
    from >> node.id >> node.properties;
    from.beginArray();
    node.children.clear();
    while (!from.atEnd()) {
        QDBusVariant child;
        from >> child;
        node.children.append(qdbus_cast<MenuNode>(child.variant()));
    }
    from.endArray();
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const MenuProperties& entry)
{
    to.beginStructure();
    to << entry.id << entry.properties;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, MenuProperties& entry)
{
    from.beginStructure();
    from >> entry.id >> entry.properties;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const MenuRemovals& entry)
{
    to.beginStructure();
    to << entry.id << entry.names;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, MenuRemovals& entry)
{
    from.beginStructure();
    from >> entry.id >> entry.names;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const MenuEvent& event)
{
    to.beginStructure();
    to << event.id << event.name << event.data << event.time;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, MenuEvent& event)
{
    from.beginStructure();
    from >> event.id >> event.name >> event.data >> event.time;
    from.endStructure();
    return from;
}

} // namespace quellon::BusTypes
