#include "QuellonHost/Linux/LinuxCommandRunner.h"

#include "QuellonCore/Diagnostics/GuardLog.h"
#include "QuellonCore/Host/Platform.h"
#include "QuellonProbe/IdentityRole.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

namespace quellon {

namespace {

/// A role about one process.
struct IdentityQuery {
    std::string_view word;
    std::optional<std::string> (*answer)(const ProcFolder& proc, std::int32_t pid);
};
constexpr IdentityQuery identityQueries[] = {{"start", IdentityRole::start}, {"parent", IdentityRole::parent}};

/// The one that is asked, null for any other request.
const IdentityQuery* identityQuery(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 2) return nullptr;
    const auto* const found = std::ranges::find(identityQueries, arguments.front(), &IdentityQuery::word);
    return found == std::end(identityQueries) ? nullptr : found;
}

/// What the helper would say; nothing about what is no process id. Absent when the kernel does not tell.
std::optional<std::string> answer(const IdentityQuery& query, const std::string& argument)
{
    const auto pid = ProcFolder::parsePid(argument);
    return pid ? query.answer(ProcFolder{}, *pid) : std::string{};
}

} // namespace

CommandResult LinuxCommandRunner::run(const Command& command, Seconds timeout)
{
    using Outcome = CommandResult::Outcome;
    if (command.path != probeName) return children_.run(command, timeout);
    const IdentityQuery* const query = identityQuery(command.arguments);
    if (query == nullptr) return probe_.ask(command.arguments, timeout);
    auto text = answer(*query, command.arguments.back());
    if (text) return {Outcome::finished, std::move(*text)};
    log_.write(GuardLog::shell, LogLevel::error, "who a process is can't be read from /proc");
    return {Outcome::lost, {}};
}

void LinuxCommandRunner::cancel()
{
    probe_.cancel();
    children_.cancel();
}

} // namespace quellon
