#include "FakeWatcher.h"

#include <QDBusError>
#include <QDBusVariant>

namespace quellon::testing {

namespace {

const QString name = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");

} // namespace

FakeWatcher::FakeWatcher(const SessionBus& bus) : client_{bus}
{
    client_.bus().registerVirtualObject(path, this);
}

FakeWatcher::~FakeWatcher()
{
    client_.bus().unregisterObject(path);
}

void FakeWatcher::appear()
{
    client_.own(name);
}

void FakeWatcher::vanish()
{
    items.clear();
    client_.disown(name);
}

void FakeWatcher::setHost(bool present)
{
    hasHost = present;
    const QString signal =
        present ? QStringLiteral("StatusNotifierHostRegistered") : QStringLiteral("StatusNotifierHostUnregistered");
    client_.bus().send(QDBusMessage::createSignal(path, name, signal));
}

bool FakeWatcher::handleMessage(const QDBusMessage& call, const QDBusConnection& bus)
{
    ++asked;
    if (isSilent) return true;
    if (refuses) return bus.send(call.createErrorReply(QDBusError::AccessDenied, QStringLiteral("Not today")));
    if (call.member() == QLatin1String{"RegisterStatusNotifierItem"}) {
        items.append(call.arguments().value(0).toString());
        return bus.send(call.createReply());
    }
    if (call.member() == QLatin1String{"Get"}) {
        return bus.send(call.createReply(QVariant::fromValue(QDBusVariant{hasHost})));
    }
    return false;
}

QString FakeWatcher::introspect(const QString& /*path*/) const
{
    return {};
}

} // namespace quellon::testing
