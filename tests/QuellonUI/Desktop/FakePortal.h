#pragma once

#include "SessionBus.h"

#include <QDBusError>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <optional>

namespace quellon::testing {

/// The desktop's settings, as its portal tells them.
class FakePortal final : public QDBusVirtualObject {
public:
    explicit FakePortal(const SessionBus& bus) : client_{bus} { client_.bus().registerVirtualObject(path(), this); }
    ~FakePortal() override { client_.bus().unregisterObject(path()); }
    FakePortal(const FakePortal&) = delete;
    FakePortal& operator=(const FakePortal&) = delete;

    QVariant scheme = uint{0};  ///< What is told; an invalid value for a portal that doesn't know the setting.
    bool isWrappedTwice = true; ///< Most portals wrap a value in a variant in a variant.
    bool isSilent = false;
    int asked = 0;

    void appear() { client_.own(QStringLiteral("org.freedesktop.portal.Desktop")); }
    /// Changes a setting, and tells.
    void change(const QVariant& value, const char* key = "color-scheme")
    {
        auto signal = QDBusMessage::createSignal(path(), interface(), QStringLiteral("SettingChanged"));
        signal.setArguments({QStringLiteral("org.freedesktop.appearance"), QLatin1String{key},
                             QVariant::fromValue(QDBusVariant{value})});
        client_.bus().send(signal);
    }
    [[nodiscard]] BusClient& client() { return client_; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override
    {
        ++asked;
        if (isSilent) return true;
        const QVariantList expected{QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme")};
        if (call.interface() != interface() || call.member() != QLatin1String{"Read"} || call.arguments() != expected ||
            !scheme.isValid()) {
            return bus.send(call.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"), {}));
        }
        const QVariant once = QVariant::fromValue(QDBusVariant{scheme});
        return bus.send(call.createReply(isWrappedTwice ? QVariant::fromValue(QDBusVariant{once}) : once));
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

private:
    static QString path() { return QStringLiteral("/org/freedesktop/portal/desktop"); }
    static QString interface() { return QStringLiteral("org.freedesktop.portal.Settings"); }

    BusClient client_;
};

} // namespace quellon::testing
