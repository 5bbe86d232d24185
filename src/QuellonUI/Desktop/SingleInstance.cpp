#include "QuellonUI/Desktop/SingleInstance.h"

#include "QuellonUI/Desktop/BusInterface.h"

#include <utility>

namespace quellon {

namespace {

const BusInterface& interface()
{
    static const BusInterface result{
        "org.freedesktop.Application",
        {{"Activate", {"a{sv}"}}, {"Open", {"as", "a{sv}"}}, {"ActivateAction", {"s", "av", "a{sv}"}}},
        {},
    };
    return result;
}

/// What the window system gave this process so that the other may come forward.
QVariantMap platformData()
{
    QVariantMap result;
    const auto add = [&result](const char* variable, QLatin1String key) {
        if (qEnvironmentVariableIsSet(variable)) result.insert(key, qEnvironmentVariable(variable));
    };
    add("DESKTOP_STARTUP_ID", QLatin1String{"desktop-startup-id"});
    add("XDG_ACTIVATION_TOKEN", QLatin1String{"activation-token"});
    return result;
}

} // namespace

const QString SingleInstance::name = QStringLiteral("org.quellon.Quellon");
const QString SingleInstance::path = QStringLiteral("/org/quellon/Quellon");

SingleInstance::SingleInstance(QDBusConnection bus, std::chrono::milliseconds limit, QObject* parent)
    : QDBusVirtualObject(parent), bus_(std::move(bus)), limit_(static_cast<int>(limit.count()))
{
    if (!bus_.isConnected()) return;
    // Before the name, so that nobody finds the name without the object.
    bus_.registerVirtualObject(path, this);
    // An owner that didn't answer may have ended in that very moment.
    const auto isOthers = [this] { return claimName() == Claim::isOthers; };
    isAlreadyRunning_ = isOthers() && (activateOwner() || isOthers());
    if (isAlreadyRunning_) bus_.unregisterObject(path);
}

SingleInstance::~SingleInstance()
{
    if (bus_.objectRegisteredAt(path) != this) return;
    bus_.unregisterObject(path);
    QDBusMessage release =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReleaseName"));
    release.setArguments({name});
    bus_.send(release);
}

SingleInstance::Claim SingleInstance::claimName() const
{
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    constexpr uint exists = 3;
    constexpr uint alreadyOwner = 4;
    QDBusMessage request =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request.setArguments({name, doNotQueue});
    const QDBusMessage reply = bus_.call(request, QDBus::Block, limit_);
    if (reply.type() != QDBusMessage::ReplyMessage) return Claim::unknown;
    const uint result = reply.arguments().value(0).toUInt();
    if (result == exists) return Claim::isOthers;
    return result == primaryOwner || result == alreadyOwner ? Claim::taken : Claim::unknown;
}

bool SingleInstance::activateOwner() const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(name, path, QLatin1String{interface().name}, QStringLiteral("Activate"));
    call.setArguments({platformData()});
    call.setAutoStartService(false);
    return bus_.call(call, QDBus::Block, limit_).type() == QDBusMessage::ReplyMessage;
}

bool SingleInstance::handleMessage(const QDBusMessage& call, const QDBusConnection& bus)
{
    if (!interface().isMeant(call)) return false;
    const QString form = busForm(call);
    const bool isAction = form == QLatin1String{"ActivateAction:sava{sv}"};
    if (!isAction && form != QLatin1String{"Activate:a{sv}"} && form != QLatin1String{"Open:asa{sv}"}) return false;
    // The program has no actions of its own, and opens no files: it comes forward, whatever it was asked for.
    QMetaObject::invokeMethod(this, &SingleInstance::activated, Qt::QueuedConnection);
    return bus.send(call.createReply());
}

QString SingleInstance::introspect(const QString& asked) const
{
    return asked == path ? interface().introspect({}) : QString{};
}

} // namespace quellon
