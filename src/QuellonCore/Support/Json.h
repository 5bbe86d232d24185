#pragma once

#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonCore/Support/UUID.h"

#include <nlohmann/json.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace quellon {

using Json = nlohmann::json;

/// How many arrays and objects may stand inside one another in a text that is read. No file of ours comes near; the
/// limit keeps a hostile text from exhausting the stack of whoever copies or writes the value.
inline constexpr std::size_t maximumJsonDepth = 128;

/// Reads one JSON text by the letter of RFC 8259: no comments, no trailing commas, no NaN, no zero bytes, nothing after
/// the value; a byte-order mark is skipped. Of duplicate keys of an object the last one holds. Absent for everything
/// else, for text that is not UTF-8, for a number beyond the range of a double, and for a text that nests deeper than
/// `maximumJsonDepth`. Never throws.
[[nodiscard]] std::optional<Json> parseJson(std::string_view text);

/// The same for a text of somebody who is not trusted: reads what `parseJson` reads, but keeps little of it, so that a
/// short text does not become a large value. Of an object there are only the members of these names; a list or an
/// object that is one of them, or the whole text when that is a list, is empty.
[[nodiscard]] std::optional<Json> parseJsonMembers(std::string_view text, std::span<const std::string_view> names);

/// The value as compact JSON in one line. Absent when a number anywhere in it is not finite or a text is not UTF-8.
[[nodiscard]] std::optional<std::string> dumpJson(const Json& value);

/// How values of one type are read from JSON and written to it. A record brings its own: `static
/// std::optional<T> fromJson(const Json&)` and `Json toJson() const`.
template <typename T>
struct JsonCodec {
    static std::optional<T> read(const Json& json) { return T::fromJson(json); }
    static Json write(const T& value) { return value.toJson(); }
};

/// `json` as a `T`; absent when it is of another type or out of the range of `T`.
template <typename T>
[[nodiscard]] std::optional<T> fromJson(const Json& json)
{
    return JsonCodec<T>::read(json);
}

/// `value` as JSON. A double that is not finite shows only in `dumpJson`.
template <typename T>
[[nodiscard]] Json toJson(const T& value)
{
    return JsonCodec<T>::write(value);
}

/// The `T` that a JSON text holds; absent for every other text. A record that is too large to become a JSON value in
/// between brings `static std::optional<T> fromJsonText(std::string_view)`.
template <typename T>
[[nodiscard]] std::optional<T> decodeJson(std::string_view text)
{
    if constexpr (requires { T::fromJsonText(text); }) {
        return T::fromJsonText(text);
    } else {
        const auto json = parseJson(text);
        return json ? fromJson<T>(*json) : std::nullopt;
    }
}

/// `value` as JSON in one line; absent when JSON can't hold it. A record that is too large to become a JSON value in
/// between brings `std::optional<std::string> toJsonText() const`.
template <typename T>
[[nodiscard]] std::optional<std::string> encodeJson(const T& value)
{
    if constexpr (requires { value.toJsonText(); }) {
        return value.toJsonText();
    } else {
        return dumpJson(toJson(value));
    }
}

namespace detail {

/// The number when it is whole and in range: 5 and 5.0 are 5, while 5.5 and true are absent.
[[nodiscard]] std::optional<std::int64_t> wholeSigned(const Json& json);
[[nodiscard]] std::optional<std::uint64_t> wholeUnsigned(const Json& json);

/// Reads every element of the array and gives it to `add`; false when `json` is no array or an element can't be read.
template <typename Element, typename Add>
bool readElements(const Json& json, Add add)
{
    if (!json.is_array()) return false;
    for (const Json& each : json) {
        auto element = fromJson<Element>(each);
        if (!element) return false;
        add(std::move(*element));
    }
    return true;
}

template <typename Elements>
Json writeElements(const Elements& elements)
{
    Json::array_t array;
    array.reserve(elements.size());
    for (const auto& each : elements) array.push_back(toJson(each));
    return Json(std::move(array));
}

} // namespace detail

template <>
struct JsonCodec<bool> {
    static std::optional<bool> read(const Json& json);
    static Json write(bool value) { return Json(value); }
};

template <>
struct JsonCodec<double> {
    static std::optional<double> read(const Json& json);
    static Json write(double value) { return Json(value); }
};

template <>
struct JsonCodec<std::string> {
    static std::optional<std::string> read(const Json& json);
    static Json write(const std::string& value) { return Json(value); }
};

/// A duration is its seconds.
template <>
struct JsonCodec<Seconds> {
    static std::optional<Seconds> read(const Json& json);
    static Json write(Seconds value) { return Json(value.count()); }
};

/// A date is its seconds since the reference date.
template <>
struct JsonCodec<Date> {
    static std::optional<Date> read(const Json& json);
    static Json write(Date value) { return Json(value.time_since_epoch().count()); }
};

/// An identifier is its text, read in either case and written in upper case.
template <>
struct JsonCodec<UUID> {
    static std::optional<UUID> read(const Json& json);
    static Json write(const UUID& value) { return Json(value.text()); }
};

template <std::integral T>
struct JsonCodec<T> {
    static std::optional<T> read(const Json& json)
    {
        const auto whole = [&json] {
            if constexpr (std::is_signed_v<T>)
                return detail::wholeSigned(json);
            else
                return detail::wholeUnsigned(json);
        }();
        if (!whole || !std::in_range<T>(*whole)) return std::nullopt;
        return static_cast<T>(*whole);
    }
    static Json write(T value) { return Json(value); }
};

/// An enumeration is its raw text. Beside its table it has `constexpr const auto& enumTable(Enum)`, which gives it.
template <typename T>
requires std::is_enum_v<T>
struct JsonCodec<T> {
    static std::optional<T> read(const Json& json)
    {
        const auto* raw = json.get_ptr<const std::string*>();
        return raw != nullptr ? enumTable(T{}).parse(*raw) : std::nullopt;
    }
    static Json write(T value) { return Json(enumTable(value).raw(value)); }
};

template <typename T>
struct JsonCodec<std::vector<T>> {
    static std::optional<std::vector<T>> read(const Json& json)
    {
        std::vector<T> result;
        if (json.is_array()) result.reserve(json.size());
        const bool whole = detail::readElements<T>(json, [&](T&& each) { result.push_back(std::move(each)); });
        return whole ? std::optional{std::move(result)} : std::nullopt;
    }
    static Json write(const std::vector<T>& value) { return detail::writeElements(value); }
};

template <typename T>
struct JsonCodec<std::deque<T>> {
    static std::optional<std::deque<T>> read(const Json& json)
    {
        std::deque<T> result;
        const bool whole = detail::readElements<T>(json, [&](T&& each) { result.push_back(std::move(each)); });
        return whole ? std::optional{std::move(result)} : std::nullopt;
    }
    static Json write(const std::deque<T>& value) { return detail::writeElements(value); }
};

/// A set is an array, written in the set's order; what stands twice in the array is in the set once.
template <typename T, typename Order>
struct JsonCodec<std::set<T, Order>> {
    static std::optional<std::set<T, Order>> read(const Json& json)
    {
        std::set<T, Order> result;
        const bool whole =
            detail::readElements<T>(json, [&](T&& each) { result.insert(result.end(), std::move(each)); });
        return whole ? std::optional{std::move(result)} : std::nullopt;
    }
    static Json write(const std::set<T, Order>& value) { return detail::writeElements(value); }
};

template <typename T, typename Order>
struct JsonCodec<std::map<std::string, T, Order>> {
    static std::optional<std::map<std::string, T, Order>> read(const Json& json)
    {
        const auto* object = json.get_ptr<const Json::object_t*>();
        if (object == nullptr) return std::nullopt;
        std::map<std::string, T, Order> result;
        for (const auto& [key, each] : *object) {
            auto value = fromJson<T>(each);
            if (!value) return std::nullopt;
            result.emplace_hint(result.end(), key, std::move(*value));
        }
        return result;
    }
    static Json write(const std::map<std::string, T, Order>& value)
    {
        Json::object_t object;
        for (const auto& [key, each] : value) object.emplace_hint(object.end(), key, toJson(each));
        return Json(std::move(object));
    }
};

/// Adds a key to an object; an absent optional adds none.
template <typename T>
void putField(Json& object, const char* key, const T& value)
{
    object[key] = toJson(value);
}
template <typename T>
void putField(Json& object, const char* key, const std::optional<T>& value)
{
    if (value) object[key] = toJson(*value);
}

/// Reads the fields of a record from a JSON object. What can't be read makes the whole record unreadable; unknown keys
/// are ignored.
///
///     JsonFields fields{json};
///     Record record;
///     fields.required("name", record.name);
///     fields.defaulted("note", record.note);
///     return fields.result(std::move(record));
class JsonFields {
public:
    /// `json` is kept by reference. Anything but an object makes the record unreadable.
    explicit JsonFields(const Json& json);

    /// The key must be there and of the type; null is a wrong type.
    template <typename T>
    void required(const char* key, T& into)
    {
        if (const Json* json = member(key))
            take(*json, into);
        else
            isReadable_ = false;
    }

    /// A missing key, or null, leaves `into` as it is; another type makes the record unreadable.
    template <typename T>
    void defaulted(const char* key, T& into)
    {
        const Json* json = member(key);
        if (json != nullptr && !json->is_null()) take(*json, into);
    }
    template <typename T>
    void defaulted(const char* key, std::optional<T>& into)
    {
        const Json* json = member(key);
        if (json != nullptr && !json->is_null()) take(*json, into.emplace());
    }
    /// The same for a value that `read` makes of the JSON, as an optional, in the place of the type's codec.
    template <typename T, typename Read>
    void defaulted(const char* key, T& into, Read read)
    {
        const Json* json = member(key);
        if (json != nullptr && !json->is_null()) assign(read(*json), into);
    }

    /// What else must hold of the record; when it does not, the record is unreadable.
    void require(bool holds) { isReadable_ = isReadable_ && holds; }

    /// The record, or absent when one of its fields could not be read.
    template <typename Record>
    [[nodiscard]] std::optional<Record> result(Record record) const
    {
        return isReadable_ ? std::optional<Record>{std::move(record)} : std::nullopt;
    }

private:
    [[nodiscard]] const Json* member(const char* key) const;

    template <typename T>
    void take(const Json& json, T& into)
    {
        assign(fromJson<T>(json), into);
    }

    template <typename T>
    void assign(std::optional<T>&& value, T& into)
    {
        if (value)
            into = std::move(*value);
        else
            isReadable_ = false;
    }

    const Json::object_t* object_;
    bool isReadable_;
};

} // namespace quellon
