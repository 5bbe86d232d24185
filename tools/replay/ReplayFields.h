#pragma once

#include "QuellonCore/Support/Json.h"

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace quellon {

/// A script that can't be read or done; the text says why.
class ReplayError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A moment as a script writes it, such as "2026-03-15T10:00:00Z", "2026-03-15T10:00:00.250Z" or
/// "2026-03-15T11:00:00+01:00". Absent for everything else, and for what no calendar or clock shows.
[[nodiscard]] std::optional<Date> parseIsoDate(std::string_view text);

/// The keys of one JSON object of a script. Every key is asked for by name and type; a missing or unknown key and a
/// value of another type (null too) throw a `ReplayError`.
class ReplayFields {
public:
    /// `json` is kept by reference. `what` names the object in errors.
    ReplayFields(const Json& json, std::string what);

    /// The value of a key that must be there.
    template <typename T>
    [[nodiscard]] T required(const char* key)
    {
        return read<T>(key, requiredJson(key));
    }
    /// The value of a key that may be missing.
    template <typename T>
    [[nodiscard]] std::optional<T> optional(const char* key)
    {
        const Json* json = optionalJson(key);
        return json != nullptr ? std::optional<T>{read<T>(key, *json)} : std::nullopt;
    }
    template <typename T>
    [[nodiscard]] T optional(const char* key, T whenMissing)
    {
        return optional<T>(key).value_or(std::move(whenMissing));
    }
    [[nodiscard]] const Json& requiredJson(const char* key);
    /// Null when the key is missing.
    [[nodiscard]] const Json* optionalJson(const char* key);

    [[nodiscard]] Date requiredDate(const char* key);
    /// A time that passes: finite, 0 or more.
    [[nodiscard]] Seconds duration(const char* key, const Json& json) const;
    [[nodiscard]] Seconds requiredDuration(const char* key) { return duration(key, requiredJson(key)); }

    /// To be called when every key was asked for: throws when the object has others.
    void finish() const;

    /// Throws "{what}: {why}".
    [[noreturn]] void refuse(const std::string& why) const;

private:
    template <typename T>
    [[nodiscard]] T read(const char* key, const Json& json) const
    {
        auto value = fromJson<T>(json);
        if (!value) refuse("\"" + std::string{key} + "\" has a value of the wrong kind");
        return *std::move(value);
    }

    const Json& json_;
    std::string what_;
    std::set<std::string, std::less<>> asked_;
};

} // namespace quellon
