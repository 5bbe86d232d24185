#include "QuellonCore/Presentation/NumberField.h"

#include "QuellonCore/Support/Text.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace quellon {

namespace {

struct Limits {
    double least;
    double most;
    bool isWhole;
    std::string_view notANumber;
    std::string_view outOfRange;
};

constexpr double mostGigabytes = 100'000.0;
constexpr double mostMegabytes = mostGigabytes * 1024.0;
constexpr std::string_view notANumber = "Enter a number.";
constexpr std::string_view grouped = "Leave out the commas between thousands, or write a point before decimals.";
constexpr std::string_view notAPlanSize = "Enter 0 to 100,000 GB.";
constexpr std::string_view notADay = "Enter a day from 1 to 31.";

Limits limits(NumberField::Kind kind)
{
    switch (kind) {
    case NumberField::Kind::startDay:
        return {1.0, 31.0, true, notADay, notADay};
    case NumberField::Kind::ruleLimit:
        return {0.0, mostMegabytes, false, notANumber, "Enter 0 to 102,400,000 MB."};
    case NumberField::Kind::planSize:
    case NumberField::Kind::carrierReading:
        break;
    }
    return {0.0, mostGigabytes, false, notANumber, notAPlanSize};
}

/// Takes the digits off the front of `rest`.
std::string_view takeDigits(std::string_view& rest)
{
    std::size_t count = 0;
    while (count < rest.size() && rest[count] >= '0' && rest[count] <= '9') ++count;
    const std::string_view digits = rest.substr(0, count);
    rest.remove_prefix(count);
    return digits;
}

/// Whether the commas in a text can stand between thousands: "1,500" is a thousand and a half to one reader and one and
/// a half to another, and must not be taken for either.
bool mayBeGrouped(std::string_view typed)
{
    std::string_view rest = stripped(typed);
    if (rest.starts_with('-') || rest.starts_with('+')) rest.remove_prefix(1);
    const std::string_view first = takeDigits(rest);
    if (first.empty() || first.size() > 3 || first.front() == '0' || !rest.starts_with(',')) return false;
    while (rest.starts_with(',')) {
        rest.remove_prefix(1);
        if (takeDigits(rest).size() != 3) return false;
    }
    return rest.empty() || rest.starts_with('.');
}

/// The number that a text is; absent when it is none. Exact to the last bit for what the limits allow: such a number
/// has at most 15 digits here.
std::optional<double> number(std::string_view typed, bool isWhole)
{
    constexpr std::size_t decimals = 6;
    constexpr double scale = 1'000'000.0;
    std::string_view rest = stripped(typed);
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    const std::string_view whole = takeDigits(rest);
    std::string_view fraction;
    if (!isWhole && (rest.starts_with('.') || rest.starts_with(','))) {
        rest.remove_prefix(1);
        fraction = takeDigits(rest);
    }
    if (!rest.empty() || (whole.empty() && fraction.empty())) return std::nullopt;
    double scaled = 0.0;
    for (const char digit : whole) scaled = scaled * 10.0 + (digit - '0');
    for (std::size_t i = 0; i < decimals; ++i) {
        scaled = scaled * 10.0 + (i < fraction.size() ? fraction[i] - '0' : 0);
    }
    return (negative ? -scaled : scaled) / scale;
}

} // namespace

NumberField::Reading NumberField::read(Kind kind, std::string_view typed)
{
    const Limits allowed = limits(kind);
    if (!allowed.isWhole && mayBeGrouped(typed)) return {std::nullopt, std::string{grouped}};
    auto value = number(typed, allowed.isWhole);
    if (!value) return {std::nullopt, std::string{allowed.notANumber}};
    if (kind == Kind::ruleLimit && !(*value > 0.0)) value = 0.0;
    if (*value < allowed.least || *value > allowed.most) return {std::nullopt, std::string{allowed.outOfRange}};
    if (*value == 0.0) value = 0.0; // not -0
    return {value, {}};
}

std::string NumberField::text(double value)
{
    if (!std::isfinite(value)) return "0";
    std::string result = fmt::format("{:.3f}", value);
    result.erase(result.find_last_not_of('0') + 1);
    if (result.ends_with('.')) result.pop_back();
    return result == "-0" ? "0" : result;
}

} // namespace quellon
