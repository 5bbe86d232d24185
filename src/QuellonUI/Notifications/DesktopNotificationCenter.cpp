#include "QuellonUI/Notifications/DesktopNotificationCenter.h"

#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QIcon>
#include <QMetaObject>
#include <QStringList>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace quellon {

namespace {

constexpr auto service = "org.freedesktop.Notifications";
constexpr auto path = "/org/freedesktop/Notifications";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr auto busService = "org.freedesktop.DBus";
constexpr auto busPath = "/org/freedesktop/DBus";
/// The bus itself answers at once, but waits for a server to come up.
constexpr std::chrono::milliseconds busLimit{25'000};

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QDBusMessage busCall(const char* method, const QVariantList& arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String{busService}, QLatin1String{busPath},
                                                          QLatin1String{busService}, QLatin1String{method});
    message.setArguments(arguments);
    return message;
}

QDBusMessage serverCall(const QString& owner, const char* interface, const char* method,
                        const QVariantList& arguments = {})
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(owner, QLatin1String{path}, QLatin1String{interface}, QLatin1String{method});
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

bool isReply(const QDBusMessage& message, const char* signature)
{
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == QLatin1String{signature};
}

/// The program's icon, where it is installed: servers draw the name of another one as a broken picture.
QString iconName()
{
    const QString name = text(DesktopNotification::desktopEntry);
    return QIcon::hasThemeIcon(name) ? name : QString{};
}

QVariantList notifyArguments(const DesktopNotification& notification)
{
    QStringList actions;
    for (const auto& action : notification.actions) actions << text(action.key) << text(action.title);
    QVariantMap hints{
        {QStringLiteral("desktop-entry"), text(DesktopNotification::desktopEntry)},
        {QStringLiteral("urgency"), QVariant::fromValue(static_cast<uchar>(notification.urgency))},
    };
    if (!notification.category.empty()) hints[QStringLiteral("category")] = text(notification.category);
    if (!notification.soundName.empty()) hints[QStringLiteral("sound-name")] = text(notification.soundName);
    if (notification.suppressSound) hints[QStringLiteral("suppress-sound")] = true;
    constexpr uint replacesNone = 0;
    return {QStringLiteral("Quellon"), replacesNone, iconName(), text(notification.summary),
            text(notification.body),   actions,      hints,      notification.expireTimeout};
}

} // namespace

DesktopNotificationCenter::DesktopNotificationCenter(const QDBusConnection& bus, std::chrono::milliseconds limit)
    : bus_{bus}, limit_{limit}
{
    if (!bus_.isConnected()) return;
    // No sender is named: the toolkit would wait for the bus to tell who that is. An answer is known by its sender.
    listen(busPath, busService, "NameOwnerChanged", SLOT(onNameOwnerChanged(QDBusMessage)), {QLatin1String{service}});
    listen(path, propertiesInterface, "PropertiesChanged", SLOT(onPropertiesChanged(QDBusMessage)),
           {QLatin1String{service}});
    listen(path, service, "ActionInvoked", SLOT(onActionInvoked(QDBusMessage)));
    listen(path, service, "NotificationClosed", SLOT(onNotificationClosed(QDBusMessage)));
    listen("/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", SLOT(onDisconnected()));
}

DesktopNotificationCenter::~DesktopNotificationCenter() = default;

void DesktopNotificationCenter::listen(const char* from, const char* interface, const char* signal, const char* slot,
                                       const QStringList& arguments)
{
    [[maybe_unused]] const bool done = bus_.connect(QString{}, QLatin1String{from}, QLatin1String{interface},
                                                    QLatin1String{signal}, arguments, QString{}, this, slot);
    Q_ASSERT(done);
}

void DesktopNotificationCenter::call(const QDBusMessage& message, std::chrono::milliseconds limit, Reply reply)
{
    auto* const watcher = new QDBusPendingCallWatcher{bus_.asyncCall(message, static_cast<int>(limit.count())), this};
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, reply = std::move(reply)] {
        watcher->deleteLater();
        reply(watcher->reply());
    });
}

DesktopNotificationCenter::Reply DesktopNotificationCenter::inThisRound(Reply reply) const
{
    return [this, reply = std::move(reply), round = round_](const QDBusMessage& message) {
        if (round == round_) reply(message);
    };
}

void DesktopNotificationCenter::requestAuthorization(std::function<void(const Authorization&)> answer)
{
    readSettings([answer = std::move(answer)](const NotificationSettings& settings) {
        Authorization authorization{.granted = settings.isAuthorized(), .error = {}};
        if (settings.authorization == NotificationAuthorization::notDetermined)
            authorization.error = NotificationServer::noAnswer;
        answer(authorization);
    });
}

void DesktopNotificationCenter::readSettings(std::function<void(const NotificationSettings&)> answer)
{
    watched_ = true;
    asked_.push_back(std::move(answer));
    if (!reading_) read();
}

void DesktopNotificationCenter::read()
{
    reading_ = true;
    ++round_;
    if (!bus_.isConnected()) {
        const auto answer = [this, round = round_] {
            if (round == round_) tellThatThereIsNone();
        };
        QMetaObject::invokeMethod(this, answer, Qt::QueuedConnection);
        return;
    }
    call(busCall("GetNameOwner", {QLatin1String{service}}), busLimit, inThisRound([this](const QDBusMessage& reply) {
             if (isReply(reply, "s"))
                 ask(reply.arguments().constFirst().toString());
             else
                 readWithoutServer();
         }));
}

void DesktopNotificationCenter::readWithoutServer()
{
    if (starting_) waiting_.clear();
    if (waiting_.empty())
        askWhetherStartable();
    else
        startServer();
}

void DesktopNotificationCenter::ask(const QString& owner)
{
    owner_ = owner;
    found_ = {};
    open_ = 3;
    const auto takeCapabilities = [this](const QDBusMessage& reply) {
        found_.told = isReply(reply, "as");
        if (found_.told) {
            for (const QString& each : reply.arguments().constFirst().toStringList())
                found_.server.capabilities.push_back(each.toStdString());
        }
        answered();
    };
    const auto takeName = [this](const QDBusMessage& reply) {
        if (isReply(reply, "ssss")) found_.server.name = reply.arguments().constFirst().toString().toStdString();
        answered();
    };
    const auto takeInhibited = [this](const QDBusMessage& reply) {
        if (isReply(reply, "v")) {
            const QVariant value = reply.arguments().constFirst().value<QDBusVariant>().variant();
            found_.server.inhibited = value.typeId() == QMetaType::Bool && value.toBool();
        }
        answered();
    };
    call(serverCall(owner, service, "GetCapabilities"), limit_, inThisRound(takeCapabilities));
    call(serverCall(owner, service, "GetServerInformation"), limit_, inThisRound(takeName));
    call(serverCall(owner, propertiesInterface, "Get", {QLatin1String{service}, QStringLiteral("Inhibited")}), limit_,
         inThisRound(takeInhibited));
}

void DesktopNotificationCenter::answered()
{
    if (--open_ > 0) return;
    const bool told = found_.told;
    known_ = std::exchange(found_, {}).server;
    if (!told)
        tell({NotificationAuthorization::notDetermined, NotificationAlerts::notSupported});
    else if (known_->showsAlerts())
        tell({NotificationAuthorization::authorized, NotificationAlerts::enabled});
    else
        tell({NotificationAuthorization::authorized, NotificationAlerts::disabled});
}

void DesktopNotificationCenter::askWhetherStartable()
{
    call(busCall("ListActivatableNames"), busLimit, inThisRound([this](const QDBusMessage& reply) {
             const bool startable =
                 isReply(reply, "as") && reply.arguments().constFirst().toStringList().contains(QLatin1String{service});
             if (!waiting_.empty())
                 readWithoutServer(); // something to show has come meanwhile
             else if (startable)
                 tell({NotificationAuthorization::provisional, NotificationAlerts::enabled});
             else
                 tellThatThereIsNone();
         }));
}

void DesktopNotificationCenter::startServer()
{
    starting_ = true;
    constexpr uint noFlags = 0;
    // A server that came up has been told of by now, as the new owner of the name, and is being asked.
    call(busCall("StartServiceByName", {QLatin1String{service}, noFlags}), busLimit,
         inThisRound([this](const QDBusMessage& /*reply*/) { tellThatThereIsNone(); }));
}

void DesktopNotificationCenter::tell(const NotificationSettings& settings)
{
    reading_ = false;
    starting_ = false;
    for (const auto& request : std::exchange(waiting_, {})) show(request);
    for (const auto& answer : std::exchange(asked_, {})) answer(settings);
    if (outdated_) settingsChanged();
}

void DesktopNotificationCenter::tellThatThereIsNone()
{
    waiting_.clear();
    tell({NotificationAuthorization::denied, NotificationAlerts::notSupported});
}

void DesktopNotificationCenter::add(const NotificationRequest& request)
{
    if (known_) {
        show(request);
        return;
    }
    waiting_.push_back(request);
    if (waiting_.size() > mostWaiting) waiting_.pop_front();
    if (!reading_) read();
}

void DesktopNotificationCenter::show(const NotificationRequest& request)
{
    if (!known_) return;
    const auto category = std::ranges::find(categories_, request.category, &NotificationCategory::identifier);
    const auto notification = DesktopNotification::of(
        request, category == categories_.end() ? std::vector<NotificationCategory::Button>{} : category->buttons,
        *known_);
    Shown shown{owner_, 0, {}, request.apps};
    for (const auto& action : notification.actions) shown.actions.emplace_back(action.key);
    const auto take = [this, shown = std::move(shown)](const QDBusMessage& reply) mutable {
        if (!isReply(reply, "u") || shown.owner != owner_) return;
        shown.id = reply.arguments().constFirst().toUInt();
        shown_.push_back(std::move(shown));
        if (shown_.size() > mostShown) shown_.pop_front();
    };
    call(serverCall(owner_, service, "Notify", notifyArguments(notification)), busLimit, take);
}

void DesktopNotificationCenter::serverChanged(const QString& owner)
{
    if (owner == owner_ && !owner.isEmpty()) return;
    owner_ = owner;
    known_.reset();
    shown_.clear();
    if (!reading_) {
        settingsChanged();
        return;
    }
    read();
    outdated_ = asked_.empty(); // what was asked for notifications that wait, nobody is told
}

void DesktopNotificationCenter::settingsChanged()
{
    outdated_ = reading_;
    if (!outdated_ && watched_ && onSettingsChange) onSettingsChange();
}

void DesktopNotificationCenter::onNameOwnerChanged(const QDBusMessage& message)
{
    if (message.service() != QLatin1String{busService} || message.signature() != QLatin1String{"sss"}) return;
    serverChanged(message.arguments().constLast().toString());
}

void DesktopNotificationCenter::onPropertiesChanged(const QDBusMessage& message)
{
    if (message.service() == owner_) settingsChanged();
}

std::deque<DesktopNotificationCenter::Shown>::iterator DesktopNotificationCenter::find(const QDBusMessage& about)
{
    const uint id = about.arguments().constFirst().toUInt();
    return std::ranges::find_if(shown_,
                                [&](const Shown& each) { return each.owner == about.service() && each.id == id; });
}

void DesktopNotificationCenter::onActionInvoked(const QDBusMessage& message)
{
    if (message.signature() != QLatin1String{"us"}) return;
    const auto found = find(message);
    if (found == shown_.end()) return;
    const std::string key = message.arguments().constLast().toString().toStdString();
    if (std::ranges::find(found->actions, key) == found->actions.end()) return;
    const Shown answered = std::move(*found);
    shown_.erase(found);
    // Not every server closes by itself what was answered.
    bus_.send(serverCall(answered.owner, service, "CloseNotification", {answered.id}));
    if (onResponse) onResponse(key, answered.apps);
}

void DesktopNotificationCenter::onNotificationClosed(const QDBusMessage& message)
{
    if (message.signature() != QLatin1String{"uu"}) return;
    const auto found = find(message);
    if (found != shown_.end()) shown_.erase(found);
}

void DesktopNotificationCenter::onDisconnected()
{
    serverChanged(QString{});
}

} // namespace quellon
