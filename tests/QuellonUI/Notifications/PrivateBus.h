#pragma once

#include <QTemporaryDir>

#include <string>
#include <sys/types.h>

namespace quellon::testing {

/// A message bus of the test's own, run by the real dbus-daemon.
class PrivateBus {
public:
    PrivateBus() = default;
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus() { stop(); }

    /// From its start on the bus starts `command` for whoever owns this name. `command` is a line of a service file.
    void makeStartable(const std::string& name, const std::string& command);
    /// False when this machine has no dbus-daemon.
    [[nodiscard]] bool start();
    void stop();
    [[nodiscard]] QString address() const;
    /// A folder for the test.
    [[nodiscard]] std::string folder() const { return folder_.path().toStdString(); }

private:
    QTemporaryDir folder_;
    pid_t pid_ = -1;
};

/// Runs the event loop until `condition` holds; false when it doesn't within the time that a broken test may take.
template <typename Condition>
[[nodiscard]] bool eventually(Condition condition);

/// The same, for conditions that are hidden in a function.
[[nodiscard]] bool eventuallyHolds(bool (*condition)(void*), void* data);

template <typename Condition>
bool eventually(Condition condition)
{
    return eventuallyHolds([](void* data) { return (*static_cast<Condition*>(data))(); }, &condition);
}

} // namespace quellon::testing
