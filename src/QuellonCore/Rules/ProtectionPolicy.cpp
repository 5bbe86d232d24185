#include "QuellonCore/Rules/ProtectionPolicy.h"

#include "QuellonCore/Support/CaseFold.h"
#include "QuellonCore/Support/Text.h"

#include <algorithm>

namespace quellon {

namespace {

constexpr const char* partOfSession = "part of a protected session";

bool isInGroup(const ProcessEntry& process, const std::set<std::int32_t>& groups)
{
    return process.pgid > 0 && groups.contains(process.pgid);
}

bool isForced(const ProcessEntry& process, const std::vector<std::string>& targets)
{
    if (targets.empty()) return false;
    const std::string name = caseFolded(lastPathComponent(process.command));
    return std::ranges::any_of(targets, [&name](const std::string& target) {
        return !target.empty() && name.find(caseFolded(target)) != std::string::npos;
    });
}

bool isBelow(const ProcessEntry& process, const std::vector<std::string>& prefixes)
{
    return std::ranges::any_of(prefixes,
                               [&process](const std::string& prefix) { return process.command.starts_with(prefix); });
}

} // namespace

ProtectionPolicy ProtectionPolicy::default_(const Platform& platform)
{
    return {platform.protection, {}, {}};
}

ProtectionPolicy::Decision ProtectionPolicy::decide(const ProcessEntry& process, const std::set<std::int32_t>& selfPIDs,
                                                    const std::set<std::int32_t>& protectedGroups) const
{
    if (selfPIDs.contains(process.pid)) return Decision::protected_("the guard itself");

    switch (policies.policy(ProcessTable::appLabel(process.command))) {
    case AppPolicy::never:
        return Decision::protected_("set to never limit");
    case AppPolicy::always:
        if (isInGroup(process, protectedGroups) && anyName(process) == nullptr)
            return Decision::protected_(partOfSession);
        return Decision::allowed();
    case AppPolicy::global:
        break;
    }
    if (isForced(process, forcedTargets)) return Decision::allowed();
    if (process.uid == 0) return Decision::protected_("root process");
    if (isBelow(process, systemPathPrefixes)) return Decision::protected_("system component");
    if (const std::string* name = anyName(process)) return Decision::protected_("protected tool (" + *name + ")");
    if (isInGroup(process, protectedGroups)) return Decision::protected_(partOfSession);
    return Decision::allowed();
}

std::set<std::int32_t> ProtectionPolicy::protectedGroups(const ProcessTable::Entries& processes) const
{
    std::set<std::int32_t> groups;
    for (const ProcessEntry& process : processes) {
        if (process.pgid > 0 && sessionName(process) != nullptr) groups.insert(process.pgid);
    }
    // An ssh that some application of the desktop runs does not make a session of the desktop's group, nor does the
    // shell script that started the desktop.
    for (const ProcessEntry& process : processes) {
        if (groups.contains(process.pgid) && machineryNames.find(process.command) != nullptr)
            groups.erase(process.pgid);
    }
    return groups;
}

std::optional<std::string> ProtectionPolicy::protectedName(const ProcessEntry& process) const
{
    const std::string* name = anyName(process);
    return name != nullptr ? std::optional{*name} : std::nullopt;
}

/// The name that protects the process together with its group; null when none does.
const std::string* ProtectionPolicy::sessionName(const ProcessEntry& process) const
{
    if (const std::string* name = protectedNames.find(process.command)) {
        const bool isApplication =
            process.command.find(".app/") != std::string::npos && cliOnlyNames.find(process.command) != nullptr;
        return isApplication ? nullptr : name;
    }
    return process.pid == process.pgid ? loginShells.find(process.command) : nullptr;
}

/// The name that protects the process, with its group or alone; null when none does.
const std::string* ProtectionPolicy::anyName(const ProcessEntry& process) const
{
    const std::string* name = sessionName(process);
    return name != nullptr ? name : machineryNames.find(process.command);
}

} // namespace quellon
