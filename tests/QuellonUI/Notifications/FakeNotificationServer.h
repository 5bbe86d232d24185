#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QHash>
#include <QSet>
#include <QString>
#include <QVariant>

#include <optional>
#include <vector>

namespace quellon::testing {

/// A server of the freedesktop.org notification service that does what the test says, in this process, on a connection
/// of its own.
class FakeNotificationServer final : public QDBusVirtualObject {
public:
    static constexpr auto service = "org.freedesktop.Notifications";
    static constexpr auto path = "/org/freedesktop/Notifications";

    explicit FakeNotificationServer(const QString& address);
    ~FakeNotificationServer() override;

    QVariantList capabilities{QStringList{QStringLiteral("actions"), QStringLiteral("body")}};
    QVariantList information{QStringLiteral("fake"), QStringLiteral("us"), QStringLiteral("1"), QStringLiteral("1.2")};
    std::optional<QVariant> inhibited;
    QVariant nextID = 1U;  ///< What Notify returns; counted on when it is a number of the agreed form.
    QSet<QString> silent;  ///< Methods that are never answered.
    QSet<QString> failing; ///< Methods that are answered with an error.
    std::vector<QDBusMessage> calls;

    /// Takes the name; waits for the bus alone.
    [[nodiscard]] bool takeName();
    void giveNameUp();

    [[nodiscard]] std::vector<QDBusMessage> callsOf(const QString& method) const;
    void emitSignal(const QString& name, const QVariantList& arguments);
    void answer(uint id, const QString& key) { emitSignal(QStringLiteral("ActionInvoked"), {id, key}); }
    void setInhibited(bool is);

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QString name_;
    QDBusConnection bus_;

    [[nodiscard]] QVariantList result(const QDBusMessage& message);
};

} // namespace quellon::testing
