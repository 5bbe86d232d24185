#pragma once

#include "QuellonCore/Notifications/DesktopNotification.h"
#include "QuellonCore/Notifications/NotificationCenter.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The freedesktop.org notification service on a message bus. Nobody has to be asked for permission here: it is granted
/// when there is a server, or one that the bus can start.
///
/// Reading the settings starts no server, as a program that only came up has nothing to show; the first notification
/// does. What an answer belongs to is known by the connection of the server that showed the notification and the number
/// that it gave it, so what is answered behind a restart of either side, or to another program, means nothing here.
class DesktopNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT
public:
    /// How long a server may take to answer a question. Those that run answer within some milliseconds.
    static constexpr std::chrono::milliseconds answerLimit{5000};
    /// How many notifications an answer is waited for; beyond, the oldest is given up.
    static constexpr std::size_t mostShown = 100;
    /// How many notifications wait for a server to be started; beyond, the oldest is dropped.
    static constexpr std::size_t mostWaiting = 16;

    /// `bus` may be one that is not connected: then nothing is authorized, and nothing shown.
    explicit DesktopNotificationCenter(const QDBusConnection& bus, std::chrono::milliseconds limit = answerLimit);
    ~DesktopNotificationCenter() override;

    void requestAuthorization(std::function<void(const Authorization&)> answer) override;
    void readSettings(std::function<void(const NotificationSettings&)> answer) override;
    void setCategories(const std::vector<NotificationCategory>& categories) override { categories_ = categories; }
    void add(const NotificationRequest& request) override;

    /// How many notifications are on the screen, or in a list, as far as their server told.
    [[nodiscard]] std::size_t shown() const { return shown_.size(); }

private:
    using Reply = std::function<void(const QDBusMessage& reply)>;

    struct Shown {
        QString owner; ///< The server's own name on the bus.
        std::uint32_t id = 0;
        std::vector<std::string> actions; ///< The keys that it may be answered with.
        std::vector<std::string> apps;
    };
    /// What one round of questions has brought so far.
    struct Found {
        NotificationServer server;
        bool told = false; ///< It has said what it can.
    };

    QDBusConnection bus_;
    std::chrono::milliseconds limit_;
    std::vector<NotificationCategory> categories_;
    QString owner_;                           ///< Empty when there is no server.
    std::optional<NotificationServer> known_; ///< The present server, once it was asked.
    std::deque<Shown> shown_;
    std::deque<NotificationRequest> waiting_;
    std::vector<std::function<void(const NotificationSettings&)>> asked_;
    bool watched_ = false; ///< Somebody has read the settings, and is told when they change.
    bool reading_ = false;
    bool starting_ = false;   ///< A server was started for what waits; there is no second try.
    bool outdated_ = false;   ///< The settings may have changed since they were read, or in the course of it.
    std::uint64_t round_ = 0; ///< Of reading; what comes back from an earlier one is ignored.
    int open_ = 0;            ///< Questions of this round that the server has not answered.
    Found found_;

    void listen(const char* path, const char* interface, const char* signal, const char* slot,
                const QStringList& arguments = {});
    void call(const QDBusMessage& message, std::chrono::milliseconds limit, Reply reply);
    /// `reply`, but only as long as the settings are not read anew.
    [[nodiscard]] Reply inThisRound(Reply reply) const;
    void read();
    void readWithoutServer();
    void ask(const QString& owner);
    void answered();
    void askWhetherStartable();
    void startServer();
    void tell(const NotificationSettings& settings);
    void tellThatThereIsNone();
    void serverChanged(const QString& owner);
    void settingsChanged();
    void show(const NotificationRequest& request);
    [[nodiscard]] std::deque<Shown>::iterator find(const QDBusMessage& about);

private Q_SLOTS:
    void onNameOwnerChanged(const QDBusMessage& message);
    void onPropertiesChanged(const QDBusMessage& message);
    void onActionInvoked(const QDBusMessage& message);
    void onNotificationClosed(const QDBusMessage& message);
    void onDisconnected();
};

} // namespace quellon
