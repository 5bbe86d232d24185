#pragma once

#include "QuellonCore/Support/Json.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

namespace quellon {

/// A set in one block of memory, ascending. For small sets that are many and rarely change: it takes a fraction of the
/// room of a `std::set`, and is made, walked and freed many times faster.
template <typename T>
class FlatSet {
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    FlatSet() = default;
    FlatSet(std::initializer_list<T> values)
    {
        for (const T& value : values) insert(value);
    }
    /// Of values in any order, any number of times.
    explicit FlatSet(std::vector<T> values) : values_(std::move(values))
    {
        std::sort(values_.begin(), values_.end());
        values_.erase(std::unique(values_.begin(), values_.end()), values_.end());
    }

    [[nodiscard]] const_iterator begin() const { return values_.begin(); }
    [[nodiscard]] const_iterator end() const { return values_.end(); }
    [[nodiscard]] bool empty() const { return values_.empty(); }
    [[nodiscard]] std::size_t size() const { return values_.size(); }

    /// Adds the value, if it is not there. Linear in the number of greater ones.
    void insert(T value)
    {
        const auto place = std::lower_bound(values_.begin(), values_.end(), value);
        if (place == values_.end() || value < *place) values_.insert(place, std::move(value));
    }

    /// Adds a value that is greater than all others. False, and nothing is added, when it is not.
    bool append(T value)
    {
        if (!values_.empty() && !(values_.back() < value)) return false;
        values_.push_back(std::move(value));
        return true;
    }

    bool operator==(const FlatSet&) const = default;

private:
    std::vector<T> values_;
};

/// An array, as for every set.
template <typename T>
struct JsonCodec<FlatSet<T>> {
    static std::optional<FlatSet<T>> read(const Json& json)
    {
        auto values = fromJson<std::vector<T>>(json);
        return values ? std::optional<FlatSet<T>>{std::in_place, *std::move(values)} : std::nullopt;
    }
    static Json write(const FlatSet<T>& value) { return detail::writeElements(value); }
};

} // namespace quellon
