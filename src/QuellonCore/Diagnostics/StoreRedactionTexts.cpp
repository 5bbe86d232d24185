#include "QuellonCore/Diagnostics/StoreRedaction.h"
#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Enforcement/EnforcementHistory.h"
#include "QuellonCore/Knowledge/AppExplanation.h"
#include "QuellonCore/Measurement/CountDirection.h"
#include "QuellonCore/Rules/ActionLevel.h"
#include "QuellonCore/Rules/AppPolicy.h"
#include "QuellonCore/Rules/UsageProfile.h"
#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/UUID.h"
#include "QuellonCore/UpdateCheck/UpdateCheckConsent.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace quellon::StoreRedaction {

namespace {

template <typename... Enums>
Texts rawTextsOf()
{
    Texts result;
    const auto add = [&result](const auto& table) {
        for (const auto& row : table.rows) result.emplace(row.raw);
    };
    (add(enumTable(Enums{})), ...);
    return result;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The number that so many digits make at the front of `rest`, taken off it; absent when there are fewer.
std::optional<int> takeNumber(std::string_view& rest, std::size_t digits)
{
    const std::string_view text = rest.substr(0, digits);
    if (text.size() < digits || !std::ranges::all_of(text, isDigit)) return std::nullopt;
    rest.remove_prefix(digits);
    int number = 0;
    for (const char digit : text) number = 10 * number + (digit - '0');
    return number;
}

/// Takes three numbers with a separator between them, of so many digits each.
std::optional<std::array<int, 3>> takeThree(std::string_view& rest, std::array<std::size_t, 3> digits, char separator)
{
    std::array<int, 3> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0 && !rest.starts_with(separator)) return std::nullopt;
        if (i > 0) rest.remove_prefix(1);
        const auto number = takeNumber(rest, digits[i]);
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

/// "Z", or a distance from UTC such as "+05:30".
bool isZone(std::string_view rest)
{
    if (rest == "Z") return true;
    if (!rest.starts_with('+') && !rest.starts_with('-')) return false;
    rest.remove_prefix(1);
    const auto hours = takeNumber(rest, 2);
    if (!hours || *hours > 23 || !rest.starts_with(':')) return false;
    rest.remove_prefix(1);
    const auto minutes = takeNumber(rest, 2);
    return minutes && *minutes < 60 && rest.empty();
}

bool isMoment(std::string_view rest)
{
    const auto day = takeThree(rest, {4, 2, 2}, '-');
    if (!day || !rest.starts_with('T')) return false;
    rest.remove_prefix(1);
    const auto time = takeThree(rest, {2, 2, 2}, ':');
    if (!time || (*time)[0] > 23 || (*time)[1] > 59 || (*time)[2] > 59) return false;
    return Calendar{}.moment({(*day)[0], (*day)[1], (*day)[2]}).has_value() && isZone(rest);
}

/// Whether Unicode counts the code point among the numbers.
bool isNumeric(utf8proc_int32_t codePoint)
{
    const auto category = utf8proc_category(codePoint);
    return category == UTF8PROC_CATEGORY_ND || category == UTF8PROC_CATEGORY_NL || category == UTF8PROC_CATEGORY_NO;
}

/// Three numbers of 4 and together 8 numeric characters, a hyphen between them: "2026-08-09".
bool isDay(std::string_view text)
{
    constexpr std::size_t length = 10;
    std::array<std::size_t, 3> digits{};
    std::size_t part = 0;
    std::size_t count = 0;
    while (!text.empty()) {
        std::int32_t codePoint = 0;
        const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
        const auto size = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
        if (size < 1 || ++count > length) return false;
        text.remove_prefix(static_cast<std::size_t>(size));
        if (codePoint == '-') {
            if (++part == digits.size()) return false;
        } else if (isNumeric(codePoint)) {
            ++digits[part];
        } else {
            return false;
        }
    }
    return count == length && digits[0] == 4 && digits[1] > 0 && digits[2] > 0;
}

} // namespace

const Texts& structuralKeys()
{
    static const Texts keys{"profiles",
                            "activeProfileID",
                            "lastProfileByInterface",
                            "planGB",
                            "billingCycleStartDay",
                            "profile",
                            "rules",
                            "sampleInterval",
                            "direction",
                            "meteredOnly",
                            "notify",
                            "enforcementAction",
                            "snoozeMinutes",
                            "appPolicies",
                            "protectedExtra",
                            "onboarded",
                            "tetherHintDismissed",
                            "updateCheckConsent",
                            "updateLastCheckedAt",
                            "explainConsent",
                            "mutedAsksUntil",
                            "presetSeededApps",
                            "id",
                            "name",
                            "usageProfile",
                            "budgetFile",
                            "windowSeconds",
                            "thresholdBytes",
                            "level",
                            "enabled",
                            "days",
                            "calibrationOffsetBytes",
                            "interfaceBaseline",
                            "unmeasuredGaps",
                            "lastUnmeasuredGapAt",
                            "day",
                            "bytes",
                            "interface",
                            "totalBytes",
                            "at",
                            "totalGuardedSeconds",
                            "recentPeaks",
                            "triggerCount",
                            "lastTriggerAt",
                            "app",
                            "windowLabel",
                            "records",
                            "lastNoticeAt",
                            "action",
                            "ruleLabel",
                            "loopBreaker",
                            "kind",
                            "entries",
                            "explanation",
                            "fetchedAt",
                            "whatItIs",
                            "whyTraffic",
                            "category",
                            "vendor",
                            "limitAdvice",
                            "limitNote",
                            "confidence",
                            "source",
                            "buckets",
                            "usage",
                            "pids",
                            "starts"};
    return keys;
}

const Texts& allowedValues()
{
    static const Texts values =
        rawTextsOf<AppPolicy, UpdateCheckConsent, UsageProfile, CountDirection, EnforcementAction, ActionLevel,
                   AppExplanation::Category, AppExplanation::LimitAdvice, AppExplanation::Confidence,
                   AppExplanation::Source, EnforcementHistory::Kind>();
    return values;
}

RedactedString::Shape shape(std::string_view text)
{
    using Shape = RedactedString::Shape;
    if (UUID::parse(text)) return Shape::uuid;
    if (isMoment(text) || isDay(text)) return Shape::timestamp;
    return text.starts_with('/') || text.starts_with("~/") ? Shape::path : Shape::other;
}

std::string_view words(Refusal refusal)
{
    static_assert(maximumJsonDepth == 128 && mostValues == 4'000'000);
    switch (refusal) {
    case Refusal::nestsTooDeep:
        return "nests deeper than 128 levels";
    case Refusal::tooManyValues:
        return "holds more than 4,000,000 values";
    case Refusal::notJson:
        break;
    }
    return "is not a JSON text";
}

} // namespace quellon::StoreRedaction
