#pragma once

#include "QuellonCore/Support/Json.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

/// A map from texts in one block of memory, ascending by key. For small maps that are many and rarely change: it takes
/// a fraction of the room of a `std::map`, and is made, walked and freed many times faster. Entries are read only; a
/// value is changed through its key.
template <typename T>
class FlatMap {
public:
    using value_type = std::pair<std::string, T>;
    using const_iterator = typename std::vector<value_type>::const_iterator;

    FlatMap() = default;
    /// Of equal keys the last one holds.
    FlatMap(std::initializer_list<value_type> entries)
    {
        for (const auto& [key, value] : entries) (*this)[key] = value;
    }

    [[nodiscard]] const_iterator begin() const { return entries_.begin(); }
    [[nodiscard]] const_iterator end() const { return entries_.end(); }
    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }

    /// The entry of the key, `end` when there is none.
    [[nodiscard]] const_iterator find(std::string_view key) const
    {
        const auto place = std::lower_bound(begin(), end(), key, isBefore);
        return place != end() && place->first == key ? place : end();
    }

    /// The value of the key, which is added when it is not there. Linear in the number of greater keys then.
    [[nodiscard]] T& operator[](std::string_view key)
    {
        const auto place = std::lower_bound(entries_.begin(), entries_.end(), key, isBefore);
        if (place != entries_.end() && place->first == key) return place->second;
        return entries_.emplace(place, std::string{key}, T{})->second;
    }

    /// Adds an entry whose key is greater than all others. False, and nothing is added, when it is not.
    bool append(std::string_view key, T value)
    {
        if (!entries_.empty() && key <= entries_.back().first) return false;
        entries_.emplace_back(key, std::move(value));
        return true;
    }

    /// Removes the entry of the key, if it is there.
    void erase(std::string_view key)
    {
        if (const auto place = find(key); place != end()) entries_.erase(place);
    }

    /// Gives back the memory that further entries would use.
    void shrinkToFit() { entries_.shrink_to_fit(); }

    bool operator==(const FlatMap&) const = default;

private:
    static bool isBefore(const value_type& entry, std::string_view key) { return entry.first < key; }

    std::vector<value_type> entries_;
};

/// An object, as for every map from texts.
template <typename T>
struct JsonCodec<FlatMap<T>> {
    static std::optional<FlatMap<T>> read(const Json& json)
    {
        const auto* object = json.get_ptr<const Json::object_t*>();
        if (object == nullptr) return std::nullopt;
        FlatMap<T> result;
        for (const auto& [key, each] : *object) {
            auto value = fromJson<T>(each);
            if (!value) return std::nullopt;
            result.append(key, std::move(*value)); // the keys of an object ascend
        }
        return result;
    }
    static Json write(const FlatMap<T>& value)
    {
        Json::object_t object;
        for (const auto& [key, each] : value) object.emplace_hint(object.end(), key, toJson(each));
        return Json(std::move(object));
    }
};

} // namespace quellon
