#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// What the lookup service has answered, by the exact name that was asked for; stored as "explanations.json". Answers
/// don't age; beyond `capacity` the oldest goes.
struct ExplanationCache {
    static constexpr std::size_t capacity = 200;

    struct Entry {
        AppExplanation explanation;
        Date fetchedAt{};

        /// Both keys must be there.
        [[nodiscard]] static std::optional<Entry> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;

        bool operator==(const Entry&) const = default;
    };

    std::map<std::string, Entry, std::less<>> entries;

    /// Keeps the answer, in place of an earlier one for the name.
    void store(AppExplanation explanation, const std::string& name, Date at);

    /// The answer for exactly this name; absent when there is none.
    [[nodiscard]] std::optional<AppExplanation> explanation(std::string_view name) const;

    /// A missing "entries" is an empty cache; one entry that can't be read makes the whole unreadable.
    [[nodiscard]] static std::optional<ExplanationCache> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const ExplanationCache&) const = default;
};

} // namespace quellon
