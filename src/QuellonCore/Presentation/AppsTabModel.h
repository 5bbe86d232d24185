#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Presentation/FormControls.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The list from which an application is picked for a policy.
struct AppPickerModel {
    /// An application that was seen on the network.
    struct Row {
        std::string app; ///< Its name, fit for a line.
        std::string bytes;
        FormButton details;
        FormButton block;
        FormButton never;
        bool operator==(const Row&) const = default;
    };

    static constexpr std::string_view title = "Apps seen using data";
    static constexpr std::string_view text =
        "Only apps that actually used the network show up here — command line tools included.";
    /// How many applications are looked at.
    static constexpr std::size_t mostCandidates = 40;

    FormText filter; ///< What is typed goes to `FilterPicker`.
    std::vector<Row> rows;
    FormButton cancel;

    /// The applications whose names contain the filter, whatever the case; all with an empty one.
    [[nodiscard]] static AppPickerModel of(const GuardEngine& engine, const std::string& query);

    bool operator==(const AppPickerModel&) const = default;
};

/// The settings window's page about single applications.
struct AppsTabModel {
    /// An application with a policy.
    struct Row {
        FormButton details;
        std::string app; ///< Its name, fit for a line.
        FormChoice policy;
        FormButton remove;
        bool operator==(const Row&) const = default;
    };

    /// What stands in the place of the rows.
    struct Empty {
        std::string_view symbol;
        std::string_view title = "Every app follows the global rules";
        std::string_view text = "Add one here to always block it, or never limit it.";
        bool operator==(const Empty&) const = default;
    };

    static constexpr std::string_view intro =
        "Blocked apps are asked about the moment they reach for the network, not after they have already spent your "
        "data.";

    std::vector<Row> rows; ///< First those that are blocked, then those that are never limited.
    std::optional<Empty> empty;
    FormButton add;
    FormButton addDevTools;
    std::optional<AppPickerModel> picker;

    [[nodiscard]] static AppsTabModel of(const GuardEngine& engine, const SettingsState& state);

    bool operator==(const AppsTabModel&) const = default;
};

} // namespace quellon
