#include "QuellonCore/Diagnostics/RedactedOutline.h"

#include <fmt/format.h>

#include <cstddef>
#include <string_view>
#include <variant>

namespace quellon::RedactedOutline {

namespace {

constexpr std::size_t indentation = 2;

std::string counted(std::size_t count, std::string_view one)
{
    if (count == 0) return fmt::format("no {}s", one);
    return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

std::string words(const RedactedString& text)
{
    return fmt::format("‹{}, {}›", redactedShapes.raw(text.shape), counted(text.characterCount, "character"));
}

std::string words(const RedactedKey& key)
{
    if (const std::string* structural = key.structuralKey()) return *structural;
    return words(*key.mappedKey());
}

/// What stands in a value's own line.
struct Head {
    std::string operator()(const RedactedJSON::Null& /*value*/) const { return "null"; }
    std::string operator()(const RedactedJSON::Object& value) const { return counted(value.fields.size(), "field"); }
    std::string operator()(const RedactedJSON::Array& value) const { return counted(value.count, "item"); }
    std::string operator()(const RedactedJSON::Number& value) const { return value.text; }
    std::string operator()(const RedactedJSON::Bool& value) const { return value.value ? "true" : "false"; }
    std::string operator()(const RedactedJSON::Text& value) const { return value.text; }
    std::string operator()(const RedactedString& value) const { return words(value); }
    std::string operator()(const RedactedJSON::TooDeep& /*value*/) const { return "…"; }
};

// NOLINTNEXTLINE(misc-no-recursion): as deep as the tree, which has an end
void add(std::string& lines, const RedactedJSON& value, std::size_t depth)
{
    lines += std::visit(Head{}, value.value);
    lines += '\n';
    if (const auto* object = std::get_if<RedactedJSON::Object>(&value.value)) {
        for (const RedactedField& field : object->fields) {
            lines.append(indentation * (depth + 1), ' ');
            lines += words(field.key);
            lines += ": ";
            add(lines, field.value, depth + 1);
        }
    } else if (const auto* array = std::get_if<RedactedJSON::Array>(&value.value)) {
        for (std::size_t i = 0; i < array->items.size(); ++i) {
            lines.append(indentation * (depth + 1), ' ');
            lines += fmt::format("[{}]: ", i);
            add(lines, array->items[i], depth + 1);
        }
    }
}

} // namespace

std::string text(const RedactedJSON& tree)
{
    std::string lines;
    add(lines, tree, 0);
    return lines;
}

} // namespace quellon::RedactedOutline
