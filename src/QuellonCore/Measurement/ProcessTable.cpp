#include "QuellonCore/Measurement/ProcessTable.h"

#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace quellon::ProcessTable {

namespace {

std::optional<ProcessEntry> parseLine(std::string_view line)
{
    std::string_view rest = trimmed(line);
    const auto pid = parseWhole<std::int32_t>(takeWord(rest));
    const auto uid = parseWhole<std::uint32_t>(takeWord(rest));
    const auto pgid = parseWhole<std::int32_t>(takeWord(rest));
    const std::string_view command = trimmed(rest);
    if (!pid || !uid || !pgid || command.empty()) return std::nullopt;
    return ProcessEntry{*pid, *uid, *pgid, std::string{command}};
}

} // namespace

Entries::Entries(std::vector<ProcessEntry> entries) : entries_(std::move(entries))
{
    const auto samePid = [](const ProcessEntry& a, const ProcessEntry& b) { return a.pid == b.pid; };
    std::ranges::reverse(entries_); // so that the last of equals comes first, which is the one that stays
    std::ranges::stable_sort(entries_, {}, &ProcessEntry::pid);
    entries_.erase(std::unique(entries_.begin(), entries_.end(), samePid), entries_.end());
}

const ProcessEntry* Entries::find(std::int32_t pid) const
{
    const auto found = std::ranges::lower_bound(entries_, pid, {}, &ProcessEntry::pid);
    return found != entries_.end() && found->pid == pid ? &*found : nullptr;
}

Entries parse(std::string_view psOutput)
{
    std::vector<ProcessEntry> entries;
    while (!psOutput.empty()) {
        if (auto entry = parseLine(takeLine(psOutput))) entries.push_back(*std::move(entry));
    }
    return Entries{std::move(entries)};
}

std::string_view appLabel(std::string_view command)
{
    return lastPathComponent(command.substr(0, command.find(".app/")));
}

} // namespace quellon::ProcessTable
