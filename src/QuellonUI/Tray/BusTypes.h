#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

/// The structures that a tray item and its menu speak on the message bus.
namespace quellon::BusTypes {

/// A picture as ARGB32 in network byte order: (iiay).
struct Pixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
    bool operator==(const Pixmap&) const = default;

    [[nodiscard]] static Pixmap of(const QImage& image);
    /// The picture again; empty when the bytes don't fit its size.
    [[nodiscard]] QImage image() const;
};

/// (sa(iiay)ss).
struct ToolTip {
    QString iconName;
    QList<Pixmap> icon;
    QString title;
    QString text;
    bool operator==(const ToolTip&) const = default;
};

/// An entry of a menu with what is below it: (ia{sv}av), where each of `children` is an entry again.
struct MenuNode {
    int id = 0;
    QVariantMap properties;
    QList<MenuNode> children;
};

/// (ia{sv}).
struct MenuProperties {
    int id = 0;
    QVariantMap properties;
};

/// Properties of an entry that are back at their defaults: (ias).
struct MenuRemovals {
    int id = 0;
    QStringList names;
};

/// What happened to an entry: (isvu).
struct MenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint time = 0;
};

/// Makes the types known to the bus library. May be called again.
void registerAll();

QDBusArgument& operator<<(QDBusArgument& to, const Pixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& from, Pixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& to, const ToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& from, ToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& to, const MenuNode& node);
const QDBusArgument& operator>>(const QDBusArgument& from, MenuNode& node);
QDBusArgument& operator<<(QDBusArgument& to, const MenuProperties& entry);
const QDBusArgument& operator>>(const QDBusArgument& from, MenuProperties& entry);
QDBusArgument& operator<<(QDBusArgument& to, const MenuRemovals& entry);
const QDBusArgument& operator>>(const QDBusArgument& from, MenuRemovals& entry);
QDBusArgument& operator<<(QDBusArgument& to, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& from, MenuEvent& event);

} // namespace quellon::BusTypes

Q_DECLARE_METATYPE(quellon::BusTypes::Pixmap)
Q_DECLARE_METATYPE(quellon::BusTypes::ToolTip)
Q_DECLARE_METATYPE(quellon::BusTypes::MenuNode)
Q_DECLARE_METATYPE(quellon::BusTypes::MenuProperties)
Q_DECLARE_METATYPE(quellon::BusTypes::MenuRemovals)
Q_DECLARE_METATYPE(quellon::BusTypes::MenuEvent)
