#include "QuellonUI/Tray/TrayHost.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <utility>

namespace quellon {

namespace {

constexpr QLatin1String watcherName{"org.kde.StatusNotifierWatcher"};
constexpr QLatin1String watcherPath{"/StatusNotifierWatcher"};
constexpr QLatin1String busName{"org.freedesktop.DBus"};
constexpr QLatin1String busPath{"/org/freedesktop/DBus"};

QDBusMessage callBus(const char* method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(busName, busPath, busName, QLatin1String{method});
    call.setArguments(arguments);
    return call;
}

QDBusMessage callWatcher(const QString& owner, QLatin1String interface, const char* method,
                         const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(owner, watcherPath, interface, QLatin1String{method});
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

bool isError(const QDBusMessage& reply)
{
    return reply.type() != QDBusMessage::ReplyMessage;
}

/// The name under which the process was started; empty where that can't be known.
std::string programOf(uint process)
{
    QFile file{QStringLiteral("/proc/%1/cmdline").arg(process)};
    if (!file.open(QIODevice::ReadOnly)) return {};
    constexpr qint64 enough = 4096;
    const QByteArray line = file.read(enough);
    const QByteArray first = line.left(line.indexOf('\0'));
    return QFileInfo{QString::fromLocal8Bit(first)}.fileName().toStdString();
}

} // namespace

bool TrayHost::showsLabels(std::string_view program)
{
    constexpr std::array<std::string_view, 4> programs{
        "gnome-shell",
        "indicator-application-service",
        "ayatana-indicator-application-service",
        "xapp-sn-watcher",
    };
    return std::find(programs.begin(), programs.end(), program) != programs.end();
}

TrayHost::TrayHost(QDBusConnection bus, std::chrono::milliseconds limit, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), limit_(limit)
{
    if (!bus_.isConnected()) {
        state_ = State::absent;
        return;
    }
    listen();
    ask(callBus("GetNameOwner", {QString{watcherName}}), [this](const QDBusMessage& reply) {
        onWatcher(isError(reply) ? QString{} : reply.arguments().value(0).toString());
    });
}

void TrayHost::listen()
{
    auto* const owners = new QDBusServiceWatcher{watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange, this};
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*name*/, const QString& /*former*/, const QString& owner) { onWatcher(owner); });
    for (const char* const each : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect(QString{}, watcherPath, watcherName, QLatin1String{each}, this, SLOT(onHostsChanged()));
    }
    bus_.connect(QString{}, QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
                 QStringLiteral("Disconnected"), this, SLOT(onDisconnected()));
}

void TrayHost::ask(const QDBusMessage& call, Answer answer)
{
    const auto pending = bus_.asyncCall(call, static_cast<int>(limit_.count()));
    auto* const watcher = new QDBusPendingCallWatcher{pending, this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, inquiry = inquiry_, answer = std::move(answer)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (inquiry == inquiry_) answer(finished->reply());
            });
}

void TrayHost::onWatcher(const QString& owner)
{
    ++inquiry_;
    watcher_ = owner;
    isKnown_ = false;
    isLabelled_ = false;
    if (owner.isEmpty())
        settle(State::absent);
    else
        findProgram();
}

void TrayHost::findProgram()
{
    ask(callBus("GetConnectionUnixProcessID", {watcher_}), [this](const QDBusMessage& reply) {
        if (!isError(reply)) isLabelled_ = showsLabels(programOf(reply.arguments().value(0).toUInt()));
        Q_EMIT changed();
        registerItem();
    });
}

void TrayHost::registerItem()
{
    const auto call = callWatcher(watcher_, watcherName, "RegisterStatusNotifierItem", {bus_.baseService()});
    ask(call, [this](const QDBusMessage& reply) {
        isKnown_ = !isError(reply);
        if (isKnown_)
            findHosts();
        else
            settle(State::broken);
    });
}

void TrayHost::findHosts()
{
    const auto call = callWatcher(watcher_, QLatin1String{"org.freedesktop.DBus.Properties"}, "Get",
                                  {QString{watcherName}, QStringLiteral("IsStatusNotifierHostRegistered")});
    ask(call, [this](const QDBusMessage& reply) {
        if (isError(reply)) return settle(State::broken);
        const QVariant value = reply.arguments().value(0).value<QDBusVariant>().variant();
        settle(value.toBool() ? State::shown : State::vacant);
    });
}

void TrayHost::onHostsChanged()
{
    if (!isKnown_) return;
    ++inquiry_;
    findHosts();
}

void TrayHost::onDisconnected()
{
    onWatcher({});
}

void TrayHost::settle(State state)
{
    state_ = state;
    Q_EMIT changed();
}

} // namespace quellon
