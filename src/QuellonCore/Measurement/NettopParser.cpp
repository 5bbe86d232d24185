#include "QuellonCore/Measurement/NettopParser.h"

#include "QuellonCore/Measurement/LANClassifier.h"
#include "QuellonCore/Support/Numbers.h"
#include "QuellonCore/Support/Text.h"

#include <array>
#include <cstddef>
#include <string>

namespace quellon::NettopParser {

namespace {

/// How many fields a row has at least; those behind are other columns.
constexpr std::size_t fieldCount = 5;
using Fields = std::array<std::string_view, fieldCount>;

/// Cuts the first fields off a line. Gives how many there are; those that are missing stay empty.
std::size_t split(std::string_view line, Fields& fields)
{
    fields = {};
    for (std::size_t i = 0; i < fieldCount; ++i) {
        const auto end = line.find(',');
        fields[i] = trimmed(line.substr(0, end));
        if (end == std::string_view::npos) return i + 1;
        line.remove_prefix(end + 1);
    }
    return fieldCount;
}

/// Where the columns stand, which a header line tells.
class Columns {
public:
    /// Takes note of a header line. Other lines change nothing.
    void read(const Fields& fields)
    {
        if (fields[0].empty() && fields[1] == "interface") {
            first_ = 0;
        } else if (first_ == 0 && isOtherHeader(fields)) {
            first_ = 1;
        }
    }
    [[nodiscard]] std::string_view name(const Fields& fields) const { return fields[first_]; }
    [[nodiscard]] std::string_view interface(const Fields& fields) const { return fields[first_ + 1]; }
    [[nodiscard]] std::string_view bytesIn(const Fields& fields) const { return fields[first_ + 2]; }
    [[nodiscard]] std::string_view bytesOut(const Fields& fields) const { return fields[first_ + 3]; }

private:
    /// The column of names has no heading, so a header begins with an empty field, or with "time" and an empty field.
    static bool isOtherHeader(const Fields& fields)
    {
        return fields[0].empty() ? !fields[1].empty() : fields[0] == "time" && fields[1].empty();
    }

    std::size_t first_ = 1; ///< Index of the name: behind the time, which is there unless a header tells otherwise.
};

} // namespace

std::vector<ConnectionSample> parse(std::string_view csv, std::optional<std::string_view> interfaceFilter)
{
    const std::string_view wanted = interfaceFilter.value_or(std::string_view{});
    std::vector<ConnectionSample> samples;
    std::optional<std::int32_t> owner;
    Columns columns;
    Fields fields;
    while (!csv.empty()) {
        const std::size_t count = split(takeLine(csv), fields);
        columns.read(fields);
        if (count < fieldCount) continue;
        const std::string_view interface = columns.interface(fields);
        if (interface.empty()) {
            owner = pid(columns.name(fields));
            continue;
        }
        if (!owner || (!wanted.empty() && interface != wanted)) continue;
        const auto bytesIn = parseWhole<std::uint64_t>(columns.bytesIn(fields));
        const auto bytesOut = parseWhole<std::uint64_t>(columns.bytesOut(fields));
        if (!bytesIn || !bytesOut || LANClassifier::isLANConnection(columns.name(fields))) continue;
        samples.push_back({*owner, std::string{columns.name(fields)}, *bytesIn, *bytesOut});
    }
    return samples;
}

std::optional<std::int32_t> pid(std::string_view fromProcessField)
{
    const auto point = fromProcessField.rfind('.');
    if (point == std::string_view::npos) return std::nullopt;
    const std::string_view number = fromProcessField.substr(point + 1);
    if (number.starts_with('+') || number.starts_with('-')) return std::nullopt;
    return parseWhole<std::int32_t>(number);
}

} // namespace quellon::NettopParser
