#include "QuellonCore/Support/Json.h"

#include "QuellonCore/Support/JsonWalk.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace quellon {

namespace {

/// Counts brackets outside of texts. Exact for valid JSON; an invalid text is refused by the parser in any case.
bool nestsTooDeep(std::string_view text)
{
    std::size_t depth = 0;
    bool inText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inText) {
            if (c == '\\')
                ++i; // skips the escaped character
            else if (c == '"')
                inText = false;
        } else if (c == '"') {
            inText = true;
        } else if (c == '[' || c == '{') {
            if (++depth > maximumJsonDepth) return true;
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

/// The library would write a number that is not finite as null.
bool canBeWritten(const Json& value)
{
    if (const auto* number = value.get_ptr<const double*>()) return std::isfinite(*number);
    if (value.is_structured()) return std::all_of(value.begin(), value.end(), canBeWritten);
    return !value.is_discarded() && !value.is_binary();
}

/// What is wrong with the text before the library sees it.
std::optional<JsonFault> faultAtSight(std::string_view text)
{
    // The library takes a zero byte for the end of the text.
    if (text.find('\0') != std::string_view::npos) return JsonFault::notJson;
    if (nestsTooDeep(text)) return JsonFault::nestsTooDeep;
    return std::nullopt;
}

/// What the text holds, as far as `keeps` wants it.
std::optional<Json> parse(std::string_view text, const Json::parser_callback_t& keeps)
{
    if (faultAtSight(text)) return std::nullopt;
    try {
        Json value = Json::parse(text, keeps, false);
        if (value.is_discarded()) return std::nullopt;
        return value;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

constexpr double twoToThe63 = 9'223'372'036'854'775'808.0;
constexpr double twoToThe64 = 18'446'744'073'709'551'616.0;

} // namespace

std::optional<Json> parseJson(std::string_view text)
{
    return parse(text, nullptr);
}

std::optional<Json> parseJsonMembers(std::string_view text, std::span<const std::string_view> names)
{
    using Event = Json::parse_event_t;
    bool isObject = false;
    return parse(text, [&](int depth, Event event, Json& value) {
        if (depth == 0) {
            isObject = isObject || event == Event::object_start;
            return true;
        }
        if (depth > 1 || !isObject) return false;
        if (event != Event::key) return true;
        const auto* name = value.get_ptr<const std::string*>();
        return name != nullptr && std::find(names.begin(), names.end(), *name) != names.end();
    });
}

std::optional<JsonFault> walkJson(std::string_view text, nlohmann::json_sax<Json>& events)
{
    if (const auto fault = faultAtSight(text)) return fault;
    return Json::sax_parse(text, &events) ? std::nullopt : std::optional{JsonFault::notJson};
}

std::optional<std::string> dumpJson(const Json& value)
{
    if (!canBeWritten(value)) return std::nullopt;
    try {
        return value.dump();
    } catch (const Json::exception&) { // a text that is not UTF-8
        return std::nullopt;
    }
}

namespace detail {

std::optional<std::int64_t> wholeSigned(const Json& json)
{
    if (const auto* number = json.get_ptr<const std::uint64_t*>()) {
        return std::in_range<std::int64_t>(*number) ? std::optional{static_cast<std::int64_t>(*number)} : std::nullopt;
    }
    if (const auto* number = json.get_ptr<const std::int64_t*>()) return *number;
    const auto* number = json.get_ptr<const double*>();
    if (number == nullptr || !(*number >= -twoToThe63 && *number < twoToThe63)) return std::nullopt;
    return std::trunc(*number) == *number ? std::optional{static_cast<std::int64_t>(*number)} : std::nullopt;
}

std::optional<std::uint64_t> wholeUnsigned(const Json& json)
{
    if (const auto* number = json.get_ptr<const std::uint64_t*>()) return *number;
    if (const auto* number = json.get_ptr<const std::int64_t*>()) {
        return *number >= 0 ? std::optional{static_cast<std::uint64_t>(*number)} : std::nullopt;
    }
    const auto* number = json.get_ptr<const double*>();
    if (number == nullptr || !(*number >= 0.0 && *number < twoToThe64)) return std::nullopt;
    return std::trunc(*number) == *number ? std::optional{static_cast<std::uint64_t>(*number)} : std::nullopt;
}

} // namespace detail

std::optional<bool> JsonCodec<bool>::read(const Json& json)
{
    const auto* flag = json.get_ptr<const bool*>();
    return flag != nullptr ? std::optional{*flag} : std::nullopt;
}

std::optional<double> JsonCodec<double>::read(const Json& json)
{
    if (!json.is_number()) return std::nullopt;
    const auto number = json.get<double>();
    return std::isfinite(number) ? std::optional{number} : std::nullopt;
}

std::optional<std::string> JsonCodec<std::string>::read(const Json& json)
{
    const auto* text = json.get_ptr<const std::string*>();
    return text != nullptr ? std::optional{*text} : std::nullopt;
}

std::optional<Seconds> JsonCodec<Seconds>::read(const Json& json)
{
    const auto number = fromJson<double>(json);
    return number ? std::optional{Seconds{*number}} : std::nullopt;
}

std::optional<Date> JsonCodec<Date>::read(const Json& json)
{
    const auto number = fromJson<double>(json);
    return number ? std::optional{Date{Seconds{*number}}} : std::nullopt;
}

std::optional<UUID> JsonCodec<UUID>::read(const Json& json)
{
    const auto* text = json.get_ptr<const std::string*>();
    return text != nullptr ? UUID::parse(*text) : std::nullopt;
}

JsonFields::JsonFields(const Json& json)
    : object_(json.get_ptr<const Json::object_t*>()), isReadable_(object_ != nullptr)
{
}

const Json* JsonFields::member(const char* key) const
{
    if (object_ == nullptr) return nullptr;
    const auto found = object_->find(key);
    return found != object_->end() ? &found->second : nullptr;
}

} // namespace quellon
