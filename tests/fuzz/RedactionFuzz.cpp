#include "Check.h"
#include "QuellonCore/Diagnostics/RedactedOutline.h"
#include "QuellonCore/Diagnostics/StoreRedaction.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace {

using namespace quellon;

/// Whether a text may be seen, judged without the code that decides it: an own word, or letters of an identifier, or
/// nothing but what dates are made of, whose digits may be of any script.
bool mayStay(std::string_view text)
{
    constexpr std::size_t longestDate = 40;
    constexpr std::size_t identifierLength = 36;
    constexpr std::string_view ofIdentifiers = "0123456789abcdefABCDEF-";
    constexpr std::string_view ofDates = "0123456789-:+TZ";
    if (StoreRedaction::allowedValues().contains(text)) return true;
    if (text.size() == identifierLength && text.find_first_not_of(ofIdentifiers) == std::string_view::npos) return true;
    const auto isOfDates = [&](char c) { return (c & 0x80) != 0 || ofDates.find(c) != std::string_view::npos; };
    return text.size() <= longestDate && text.find('-') != std::string_view::npos &&
           std::ranges::all_of(text, isOfDates);
}

/// That `tree` is `json` without what may not be seen. The texts of numbers are those of the input.
void checkShape(const Json& json, const RedactedJSON& tree, int depth)
{
    const auto& value = tree.value;
    FUZZ_CHECK(std::holds_alternative<RedactedJSON::TooDeep>(value) == (depth >= StoreRedaction::maximumDepth));
    if (depth >= StoreRedaction::maximumDepth) return;
    if (const auto* object = std::get_if<RedactedJSON::Object>(&value)) {
        FUZZ_CHECK(json.is_object() && object->fields.size() == json.size());
        auto member = json.items().begin();
        for (const RedactedField& field : object->fields) {
            const std::string* stays = field.key.structuralKey();
            FUZZ_CHECK((stays != nullptr) == StoreRedaction::structuralKeys().contains(member.key()));
            FUZZ_CHECK(stays == nullptr || *stays == member.key());
            checkShape(member.value(), field.value, depth + 1);
            ++member;
        }
    } else if (const auto* array = std::get_if<RedactedJSON::Array>(&value)) {
        FUZZ_CHECK(json.is_array() && array->count == json.size() && array->items.size() == json.size());
        for (std::size_t i = 0; i < json.size(); ++i) checkShape(json[i], array->items[i], depth + 1);
    } else if (const auto* text = std::get_if<RedactedJSON::Text>(&value)) {
        FUZZ_CHECK(json == text->text && mayStay(text->text));
    } else if (std::holds_alternative<RedactedString>(value)) {
        FUZZ_CHECK(json.is_string());
    } else if (const auto* number = std::get_if<RedactedJSON::Number>(&value)) {
        FUZZ_CHECK(json.is_number() && number->text.find_first_not_of("0123456789+-.eE") == std::string::npos);
    } else if (const auto* flag = std::get_if<RedactedJSON::Bool>(&value)) {
        FUZZ_CHECK(json == flag->value);
    } else {
        FUZZ_CHECK(json.is_null());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using StoreRedaction::Refusal;
    const std::string_view text{reinterpret_cast<const char*>(data), size};
    const auto json = parseJson(text);
    const auto redacted = StoreRedaction::redactText(text);
    FUZZ_CHECK(std::holds_alternative<Refusal>(redacted) == !json);
    (void)StoreRedaction::redactValue(text); // whatever it is
    if (!json) return 0;
    const auto& tree = std::get<RedactedJSON>(redacted);
    checkShape(*json, tree, 0);
    checkShape(*json, StoreRedaction::redact(*json), 0);
    const std::string lines = RedactedOutline::text(tree);
    FUZZ_CHECK(lines.ends_with('\n'));
    FUZZ_CHECK(std::ranges::none_of(lines, [](char c) { return c >= 0 && c < ' ' && c != '\n'; }));
    return 0;
}
