#pragma once

#include "ChildTerminal.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace quellon {

/// A child of this test, which does nothing but can be frozen.
class Victim {
public:
    Victim();
    ~Victim();
    Victim(const Victim&) = delete;
    Victim& operator=(const Victim&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Whether it has been stopped, or has been continued, since the last call.
    [[nodiscard]] bool hasStopped() const;
    [[nodiscard]] bool hasContinued() const;

private:
    pid_t pid_;
};

/// Everything for a guard that freezes: real processes, a state folder whose settings have one rule that steps in, and
/// the real program beside a helper that tells of a hotspot on which these processes move more and more.
class FreezingWorld {
public:
    /// So many applications, of one process each, called "first", "second", …. `settings` are further members for the
    /// settings' file, such as `, "snoozeMinutes": 5`.
    explicit FreezingWorld(std::size_t applications = 1, std::string_view settings = {});
    ~FreezingWorld();
    FreezingWorld(const FreezingWorld&) = delete;
    FreezingWorld& operator=(const FreezingWorld&) = delete;

    /// The program with these arguments in a terminal of its own.
    [[nodiscard]] ChildTerminal::Setup setup(std::vector<std::string> arguments) const;
    /// Waits until all are frozen, and that is on record. False when it did not come to that in time.
    [[nodiscard]] bool awaitFreeze(ChildTerminal& terminal) const;
    /// Whether each has been continued since it was frozen, and none has been stopped again.
    [[nodiscard]] bool allGoOn() const;

    [[nodiscard]] const Victim& victim(std::size_t index) const { return victims_[index]; }
    /// The content of a file in the state folder; empty when there is none.
    [[nodiscard]] std::string stateFile(std::string_view name) const;
    void setStateFile(std::string_view name, std::string_view content) const;
    /// From now on the program finds no helper.
    void removeHelper() const;
    /// Puts other files in the place of program and helper, as an upgrade does while both run.
    void upgrade() const;
    /// Kills the helpers that this program has started. False when it has none.
    [[nodiscard]] static bool killHelpers(pid_t program);

private:
    std::filesystem::path folder_;
    std::vector<Victim> victims_;

    [[nodiscard]] std::string helper() const;
};

} // namespace quellon
