#include "QuellonProbe/PsRole.h"

#include "QuellonProbe/Text.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

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

void append(std::string& text, std::int32_t pid, std::uint32_t user, std::int32_t group, std::string_view path)
{
    appendNumber(text, pid);
    appendNumber(text, user);
    appendNumber(text, group);
    text.append(path).append(1, '\n');
}

void append(std::string& text, const SeenProcess& process)
{
    append(text, process.pid, process.user, process.group, process.path);
}

} // namespace

PsRole::PsRole(const ProcFolder& proc, ProcessNames& names) : proc_{proc}, names_{names} {}

std::optional<std::string> PsRole::answer(std::span<const SeenProcess> seen)
{
    if (!proc_.list(pids_)) {
        complain("the list of processes can't be read", errno);
        return std::nullopt;
    }
    std::string text;
    text.reserve(lastSize_ + 1024);
    auto next = seen.begin();
    for (const auto pid : pids_) {
        for (; next != seen.end() && next->pid < pid; ++next) append(text, *next);
        const bool isSeen = next != seen.end() && next->pid == pid;
        appendRow(text, pid, isSeen ? &*next++ : nullptr);
    }
    for (; next != seen.end(); ++next) append(text, *next);
    lastSize_ = text.size();
    names_.forgetUnused();
    return text;
}

/// The row of a process that is in the list. It may have ended all the same, waited for by its parent or not.
void PsRole::appendRow(std::string& text, std::int32_t pid, const SeenProcess* seen)
{
    const auto stat = proc_.stat(pid);
    const auto owner = stat ? proc_.owner(pid) : std::nullopt;
    const bool isDead = !owner || (stat->hasEnded && seen);
    if (!isDead) return append(text, pid, *owner, stat->group, names_.of(pid, *stat));
    if (seen) append(text, *seen);
}

} // namespace quellon
