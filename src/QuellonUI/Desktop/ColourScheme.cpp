#include "QuellonUI/Desktop/ColourScheme.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace quellon {

namespace {

using Preference = ColourScheme::Preference;

constexpr QLatin1String portalPath{"/org/freedesktop/portal/desktop"};
constexpr QLatin1String portalInterface{"org.freedesktop.portal.Settings"};
constexpr QLatin1String group{"org.freedesktop.appearance"};
constexpr QLatin1String key{"color-scheme"};

/// What a value of the setting means. Portals differ in how often they wrap it.
Preference preferenceOf(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    if (value.metaType() != QMetaType::fromType<uint>()) return Preference::unknown;
    constexpr uint dark = 1;
    constexpr uint light = 2;
    if (value.toUInt() == dark) return Preference::dark;
    return value.toUInt() == light ? Preference::light : Preference::unknown;
}

bool isPaletteDark()
{
    constexpr int middle = 128;
    return QGuiApplication::palette().color(QPalette::Window).lightness() < middle;
}

} // namespace

ColourScheme::ColourScheme(QDBusConnection bus, QObject* parent) : QObject(parent), isPaletteDark_(isPaletteDark())
{
    if (!bus.isConnected()) return;
    qRegisterMetaType<QDBusVariant>();
    bus.connect(QString{}, portalPath, portalInterface, QStringLiteral("SettingChanged"),
                {QString{group}, QString{key}}, QString{}, this, SLOT(onSettingChanged(QDBusMessage)));
    ask(bus);
}

void ColourScheme::ask(const QDBusConnection& bus)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"), portalPath,
                                                       portalInterface, QStringLiteral("Read"));
    call.setArguments({QString{group}, QString{key}});
    auto* const watcher = new QDBusPendingCallWatcher{bus.asyncCall(call), this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        const QDBusMessage reply = finished->reply();
        if (reply.type() == QDBusMessage::ReplyMessage) setPreference(preferenceOf(reply.arguments().value(0)));
    });
}

bool ColourScheme::isDark() const
{
    return preference_ == Preference::unknown ? isPaletteDark_ : preference_ == Preference::dark;
}

void ColourScheme::onSettingChanged(const QDBusMessage& message)
{
    if (message.signature() == QLatin1String{"ssv"}) setPreference(preferenceOf(message.arguments().at(2)));
}

void ColourScheme::setPreference(Preference preference)
{
    const bool wasDark = isDark();
    preference_ = preference;
    if (isDark() != wasDark) Q_EMIT changed(isDark());
}

} // namespace quellon
