#pragma once

#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Rules/AppPolicyTable.h"
#include "QuellonCore/Rules/ProtectionTable.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

/// What stands between every rule and every signal: the system's table, and what the user says about applications.
/// Made once, since the lists are long; `policies` is replaced when the user changes it.
struct ProtectionPolicy : ProtectionTable {
    /// Fragments of executables' names that pass the checks of the system; an empty one matches nothing.
    std::vector<std::string> forcedTargets;

    /// The user's overrides.
    AppPolicyTable policies;

    /// The table of a platform, no forced targets, no overrides.
    [[nodiscard]] static ProtectionPolicy default_(const Platform& platform);

    /// Whether a process may be touched and, if not, why.
    struct Decision {
        enum class Kind { protected_, allowed };
        Kind kind = Kind::allowed;
        std::string reason; ///< In words for the user; empty when allowed.

        [[nodiscard]] static Decision protected_(std::string reason) { return {Kind::protected_, std::move(reason)}; }
        [[nodiscard]] static Decision allowed() { return {}; }
        [[nodiscard]] bool isAllowed() const { return kind == Kind::allowed; }

        bool operator==(const Decision&) const = default;
    };

    /// Decides about one process. `selfPIDs` are the guard and what it was started from; nothing overrides them.
    /// `protectedGroups` are those of the whole process table.
    [[nodiscard]] Decision decide(const ProcessEntry& process, const std::set<std::int32_t>& selfPIDs,
                                  const std::set<std::int32_t>& protectedGroups) const;

    /// The process groups of the protected sessions among these processes. A group that holds machinery is the
    /// desktop's and none of them.
    [[nodiscard]] std::set<std::int32_t> protectedGroups(const ProcessTable::Entries& processes) const;

    /// The name of a table that protects the process, as it stands there; absent when none does.
    [[nodiscard]] std::optional<std::string> protectedName(const ProcessEntry& process) const;

    bool operator==(const ProtectionPolicy&) const = default;

private:
    [[nodiscard]] const std::string* sessionName(const ProcessEntry& process) const;
    [[nodiscard]] const std::string* anyName(const ProcessEntry& process) const;
};

} // namespace quellon
