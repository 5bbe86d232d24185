#pragma once

#include "QuellonCore/Rules/AppPolicy.h"
#include "QuellonCore/Support/Json.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The user's overrides by application label. No entry ever holds `global`, which is the meaning of absence.
class AppPolicyTable {
public:
    /// In ascending order of the labels.
    using Entries = std::map<std::string, AppPolicy, std::less<>>;

    AppPolicyTable() = default;
    /// Entries of `global` are dropped.
    explicit AppPolicyTable(Entries entries);

    [[nodiscard]] const Entries& entries() const { return entries_; }
    [[nodiscard]] bool isEmpty() const { return entries_.empty(); }

    /// The entry of `app`, or `global`. Labels are compared byte by byte.
    [[nodiscard]] AppPolicy policy(std::string_view app) const;
    /// `global` removes the entry.
    void set(AppPolicy policy, std::string_view app);
    void remove(std::string_view app);
    /// The labels with this policy, ascending; none for `global`.
    [[nodiscard]] std::vector<std::string> apps(AppPolicy with) const;
    /// Sets each of `DevToolPresets::names` that has no entry to `always`. Returns those, in the order of the names; a
    /// name that has an entry keeps it.
    std::vector<std::string> addDevToolPresets();

    /// An object of label to raw text; entries of "global" are dropped, an unknown text fails the whole.
    [[nodiscard]] static std::optional<AppPolicyTable> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const AppPolicyTable&) const = default;

private:
    Entries entries_;
};

} // namespace quellon
