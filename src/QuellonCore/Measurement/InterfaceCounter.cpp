#include "QuellonCore/Measurement/InterfaceCounter.h"

#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Support/Checked.h"
#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <cstddef>
#include <string>

namespace quellon {

namespace {

/// A row without an address; one with an address has one column more.
constexpr std::size_t leastColumns = 10;

/// Only the row of the link layer counts everything that the interface carried.
std::optional<InterfaceCounter> parseRow(std::string_view line, std::string_view interface)
{
    const auto columns = words(line);
    if (columns.size() < leastColumns) return std::nullopt;
    std::string_view name = columns[0];
    if (name.ends_with('*')) name.remove_suffix(1); // the mark of an interface that is down
    if (name != interface || !columns[2].starts_with("<Link")) return std::nullopt;
    // From the end, since the address may be missing: Ibytes Opkts Oerrs Obytes Coll.
    const auto inBytes = parseWhole<std::uint64_t>(columns[columns.size() - 5]);
    const auto outBytes = parseWhole<std::uint64_t>(columns[columns.size() - 2]);
    if (!inBytes || !outBytes) return std::nullopt;
    return InterfaceCounter{*inBytes, *outBytes};
}

} // namespace

std::uint64_t InterfaceCounter::totalBytes() const
{
    return checkedAdd(inBytes, outBytes);
}

std::optional<InterfaceCounter> InterfaceCounter::current(const Host& host, std::string_view interface)
{
    if (interface.empty()) return std::nullopt;
    const auto output = Shell::run(host, host.platform.tool(ToolRole::netstat, {std::string{interface}}));
    if (!output) return std::nullopt;
    return parse(*output, interface);
}

std::optional<InterfaceCounter> InterfaceCounter::parse(std::string_view netstatOutput, std::string_view interface)
{
    while (!netstatOutput.empty()) {
        if (const auto counter = parseRow(takeLine(netstatOutput), interface)) return counter;
    }
    return std::nullopt;
}

} // namespace quellon
