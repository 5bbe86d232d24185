#pragma once

#include "QuellonCore/Presentation/NumberField.h"
#include "QuellonCore/Presentation/SettingsTab.h"
#include "QuellonCore/Rules/RuleDerivation.h"
#include "QuellonCore/Support/UUID.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quellon {

/// What the settings window, or the first-run window, remembers between two models, beside what the engine knows. The
/// window's tab stays chosen when it is opened again.
struct SettingsState {
    SettingsTab tab = SettingsTab::plan;
    UUID plan; ///< The plan that the next two are about.
    /// What was typed into number fields and has not taken effect. What was refused stays until it is mended or its
    /// page is left.
    std::map<NumberField, std::string> drafts;
    /// What the user is asked about before the rules are derived anew; empty while nobody is asked.
    std::vector<RuleDerivation::PendingRuleChange> pendingRederive;
    bool showingPicker = false;
    std::string query;                        ///< The picker's filter.
    std::optional<std::string> askingConsent; ///< The application whose details ask for the consent to lookups.
    bool copied = false;                      ///< The diagnostics were copied a moment ago.
    std::optional<bool> startsAtLogin;        ///< Whether the user's session starts the program, where that is known.
    std::optional<std::string> startRefusal;  ///< Why the latest change of that failed.

    bool operator==(const SettingsState&) const = default;
};

} // namespace quellon
