#include "QuellonProbe/PsRole.h"

#include "QuellonProbe/ApplicationPath.h"
#include "QuellonProbe/Text.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <utility>

namespace quellon {
namespace {

constexpr std::size_t numberWidth = 5;

template <typename Number>
void appendNumber(std::string& text, Number number)
{
    std::array<char, 16> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const auto size = static_cast<std::size_t>(end - digits.data());
    if (size < numberWidth) text.append(numberWidth - size, ' ');
    text.append(digits.data(), size);
    text += ' ';
}

template <typename Map>
void eraseUnused(Map& map, std::uint64_t round)
{
    for (auto entry = map.begin(); entry != map.end();) {
        entry = entry->second.round == round ? std::next(entry) : map.erase(entry);
    }
}

} // namespace

PsRole::PsRole(const ProcFolder& proc, std::string root) : proc_{proc}, root_{std::move(root)} {}

std::optional<std::string> PsRole::answer()
{
    if (!proc_.list(pids_)) {
        complain("the list of processes can't be read", errno);
        return std::nullopt;
    }
    ++round_;
    std::string text;
    text.reserve(lastSize_ + 1024);
    for (const auto pid : pids_) appendRow(text, pid);
    lastSize_ = text.size();
    eraseUnused(byExecutable_, round_);
    eraseUnused(bySandboxed_, round_);
    return text;
}

void PsRole::appendRow(std::string& text, std::int32_t pid)
{
    const auto stat = proc_.stat(pid);
    const auto owner = proc_.owner(pid);
    if (!stat || !owner) return;
    appendNumber(text, pid);
    appendNumber(text, *owner);
    appendNumber(text, stat->group);
    text += name(pid, *stat);
    text += '\n';
}

/// A view that holds until the next call.
std::string_view PsRole::name(std::int32_t pid, const ProcessStat& stat)
{
    if (!stat.isKernelThread) {
        if (const auto executable = proc_.executable(pid)) return applicationName(hostPath(pid, stat, *executable));
    }
    bare_ = cleanName(stat.comm);
    if (stat.isKernelThread) bare_ = "[" + bare_ + "]";
    // A row without a fourth column would be no row.
    if (bare_.find_first_not_of(' ') == std::string::npos) bare_ = "?";
    return bare_;
}

std::string_view PsRole::applicationName(const std::string& executable)
{
    Name& known = byExecutable_[executable];
    if (known.round == 0) known.text = cleanName(ApplicationPath::of(executable, root_));
    known.round = round_;
    return known.text;
}

/// The executable, unless it lies in an application's sandbox, where it is only a name until the sandbox has told
/// which application it is.
const std::string& PsRole::hostPath(std::int32_t pid, const ProcessStat& stat, const std::string& executable)
{
    if (executable.compare(0, 5, "/app/") != 0) return executable;
    Sandboxed& known = bySandboxed_[pid];
    if (known.round == 0 || known.startTicks != stat.startTicks || known.executable != executable) {
        const auto info = proc_.file(pid, "root/.flatpak-info");
        const auto path = info ? ApplicationPath::outOfSandbox(executable, *info) : std::nullopt;
        known = {stat.startTicks, executable, path.value_or(std::string{}), round_};
    }
    known.round = round_;
    return known.hostPath.empty() ? executable : known.hostPath;
}

} // namespace quellon
