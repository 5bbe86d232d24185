#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <chrono>

namespace quellon {

/// That the program runs once in a session: the first one owns the program's name on the message bus and is asked there
/// to come forward by every later one (`org.freedesktop.Application`).
///
/// Construction blocks, unlike everything else on the bus: for the bus, and in a later process for the first one's
/// answer, each for at most `limit`. It belongs before the engine and the windows are made; nothing waits for them yet.
class SingleInstance final : public QDBusVirtualObject {
    Q_OBJECT
public:
    static const QString name;
    static const QString path;
    static constexpr std::chrono::milliseconds defaultLimit{3000};

    explicit SingleInstance(QDBusConnection bus = QDBusConnection::sessionBus(),
                            std::chrono::milliseconds limit = defaultLimit, QObject* parent = nullptr);
    ~SingleInstance() override;
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Whether another process has the name. It has been asked to come forward; whether it did is not known, but two
    /// guards must not share one state in any case. False where there is no bus, or the bus doesn't say.
    [[nodiscard]] bool isAlreadyRunning() const { return isAlreadyRunning_; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override;
    [[nodiscard]] QString introspect(const QString& path) const override;

Q_SIGNALS:
    /// Another process, or the desktop, asks the program to come forward. After the call was answered.
    void activated();

private:
    enum class Claim { taken, isOthers, unknown };

    QDBusConnection bus_;
    int limit_; ///< milliseconds
    bool isAlreadyRunning_ = false;

    [[nodiscard]] Claim claimName() const;
    /// Whether the owner of the name has answered.
    [[nodiscard]] bool activateOwner() const;
};

} // namespace quellon
