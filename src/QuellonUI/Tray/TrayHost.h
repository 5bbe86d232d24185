#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <string_view>

namespace quellon {

/// The session's tray, as far as it speaks StatusNotifier: makes the item of this connection known to the watcher,
/// which tells the hosts, and makes it known again when another watcher comes. Never waits for any of them.
class TrayHost final : public QObject {
    Q_OBJECT
public:
    enum class State {
        unknown, ///< Still being found out.
        absent,  ///< There is no watcher.
        vacant,  ///< There is a watcher, but no host that shows anything.
        broken,  ///< The watcher refuses the item, or says nothing.
        shown,   ///< A host has the item.
    };

    /// `limit` is how long a watcher may take for an answer. A bus that isn't there is as a bus without a watcher.
    TrayHost(QDBusConnection bus, std::chrono::milliseconds limit, QObject* parent = nullptr);

    [[nodiscard]] State state() const { return state_; }
    /// Whether the host shows a text beside the icon.
    [[nodiscard]] bool isLabelled() const { return isLabelled_; }

    /// Whether the program of this name shows the label of an item beside its icon. What shows none, or shows it in the
    /// icon's place, is not among them.
    [[nodiscard]] static bool showsLabels(std::string_view program);

Q_SIGNALS:
    /// What this tells may be different now. Told before a host can read the item.
    void changed();

private Q_SLOTS:
    void onHostsChanged();
    void onDisconnected();

private:
    using Answer = std::function<void(const QDBusMessage& reply)>;

    QDBusConnection bus_;
    std::chrono::milliseconds limit_;
    State state_ = State::unknown;
    bool isLabelled_ = false;
    QString watcher_;      ///< The watcher's unique name; empty when there is none.
    bool isKnown_ = false; ///< The watcher has taken the item.
    unsigned inquiry_ = 0; ///< Of several inquiries, only the answers to the latest count.

    void listen();
    void ask(const QDBusMessage& call, Answer answer);
    void onWatcher(const QString& owner);
    void findProgram();
    void registerItem();
    void findHosts();
    void settle(State state);
};

} // namespace quellon
