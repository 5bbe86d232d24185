#pragma once

#include "../Desktop/SessionBus.h"

#include <QDBusVirtualObject>
#include <QStringList>

namespace quellon::testing {

/// What keeps the list of tray items, and the host that shows them, in one.
class FakeWatcher final : public QDBusVirtualObject {
public:
    explicit FakeWatcher(const SessionBus& bus);
    ~FakeWatcher() override;
    FakeWatcher(const FakeWatcher&) = delete;
    FakeWatcher& operator=(const FakeWatcher&) = delete;

    bool hasHost = true;   ///< Whether there is one that shows the items.
    bool refuses = false;  ///< Answers with errors.
    bool isSilent = false; ///< Answers nothing.
    QStringList items;     ///< Those that were registered, in order.
    int asked = 0;         ///< How often it was called.

    /// Comes to the bus and goes from it, as a host that is started and ended.
    void appear();
    void vanish();
    void setHost(bool present);
    [[nodiscard]] BusClient& client() { return client_; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override;
    QString introspect(const QString& path) const override;

private:
    BusClient client_;
};

} // namespace quellon::testing
