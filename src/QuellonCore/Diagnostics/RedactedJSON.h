#pragma once

#include "QuellonCore/Support/EnumTable.h"

#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace quellon {

/// What is left of a text that was taken out.
struct RedactedString {
    /// What kind of text it was.
    enum class Shape { uuid, timestamp, path, other };

    std::size_t characterCount = 0; ///< In code points.
    Shape shape = Shape::other;
    bool operator==(const RedactedString&) const = default;
};

inline constexpr EnumTable<RedactedString::Shape, 4> redactedShapes{{{
    {RedactedString::Shape::uuid, "uuid", "Identifier"},
    {RedactedString::Shape::timestamp, "timestamp", "Date"},
    {RedactedString::Shape::path, "path", "Path"},
    {RedactedString::Shape::other, "other", "Text"},
}}};

constexpr const auto& enumTable(RedactedString::Shape /*type*/)
{
    return redactedShapes;
}

/// The key of a field: one of the program's own as it stands, or what is left of one that was data, such as an
/// application's name.
struct RedactedKey {
    std::variant<std::string, RedactedString> value;

    [[nodiscard]] static RedactedKey structural(std::string key) { return {std::move(key)}; }
    [[nodiscard]] static RedactedKey mapped(RedactedString key) { return {key}; }

    /// The key as it stands; null for one that was taken out.
    [[nodiscard]] const std::string* structuralKey() const { return std::get_if<std::string>(&value); }
    /// What is left of a key that was taken out; null for one that stands.
    [[nodiscard]] const RedactedString* mappedKey() const { return std::get_if<RedactedString>(&value); }

    bool operator==(const RedactedKey&) const = default;
};

struct RedactedField;

/// A JSON value without anything that a user could be known by: its structure, its numbers, and the few texts that are
/// allowed to stay.
struct RedactedJSON {
    /// The fields by key, ascending byte by byte, in the order of the keys that were taken out too.
    struct Object {
        std::vector<RedactedField> fields;
        bool operator==(const Object&) const;
    };
    struct Array {
        std::size_t count = 0; ///< How many elements the array has.
        std::vector<RedactedJSON> items;
        bool operator==(const Array&) const;
    };
    struct Number {
        std::string text;
        bool operator==(const Number&) const = default;
    };
    struct Bool {
        bool value = false;
        bool operator==(const Bool&) const = default;
    };
    /// A text that is allowed to stay.
    struct Text {
        std::string text;
        bool operator==(const Text&) const = default;
    };
    struct Null {
        bool operator==(const Null&) const = default;
    };
    /// What lies below the depth limit.
    struct TooDeep {
        bool operator==(const TooDeep&) const = default;
    };

    std::variant<Null, Object, Array, Number, Bool, Text, RedactedString, TooDeep> value;

    bool operator==(const RedactedJSON&) const;
};

struct RedactedField {
    RedactedKey key;
    RedactedJSON value;
    bool operator==(const RedactedField&) const = default;
};

// Written out: clang 14 breaks down over defaults for types that contain one another.
inline bool RedactedJSON::Object::operator==(const Object& other) const
{
    return fields == other.fields;
}
inline bool RedactedJSON::Array::operator==(const Array& other) const
{
    return count == other.count && items == other.items;
}
inline bool RedactedJSON::operator==(const RedactedJSON& other) const
{
    return value == other.value;
}

} // namespace quellon
