#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Presentation/ActionButton.h"
#include "QuellonCore/Presentation/NumberField.h"
#include "QuellonCore/Presentation/SettingsTab.h"
#include "QuellonCore/Rules/ActionLevel.h"
#include "QuellonCore/Rules/AppPolicy.h"
#include "QuellonCore/Rules/UsageProfile.h"
#include "QuellonCore/Support/Time.h"
#include "QuellonCore/Support/UUID.h"

#include <optional>
#include <string>
#include <variant>

namespace quellon {

/// What the controls of the settings window, of its sheets and of the first-run window do. Applications go by their
/// labels as the engine has them.
namespace SettingsActions {

struct SelectTab {
    SettingsTab tab = SettingsTab::plan;
    bool operator==(const SelectTab&) const = default;
};

/// The window was closed: what was refused, or not yet asked for, goes with it; the carrier's word stays.
struct CloseWindow {
    bool operator==(const CloseWindow&) const = default;
};

// The plan.
struct SelectProfile {
    UUID id;
    bool operator==(const SelectProfile&) const = default;
};
struct RenameProfile {
    std::string name;
    std::optional<UUID> plan{}; ///< Whose name it is; absent: the active plan's.
    bool operator==(const RenameProfile&) const = default;
};
struct AddProfile {
    bool operator==(const AddProfile&) const = default;
};
struct DeleteProfile {
    UUID id;
    bool operator==(const DeleteProfile&) const = default;
};
struct SetUsageProfile {
    UsageProfile profile = UsageProfile::developer;
    bool operator==(const SetUsageProfile&) const = default;
};
/// The text in a number's field has changed; nothing takes effect yet.
struct EditNumber {
    NumberField field;
    std::string text;
    bool operator==(const EditNumber&) const = default;
};
/// The field was left, or Enter was pressed: its number takes effect, unless it is refused.
struct CommitNumber {
    NumberField field;
    bool operator==(const CommitNumber&) const = default;
};
struct RederiveRules {
    bool operator==(const RederiveRules&) const = default;
};
/// The question whether the rules may be replaced is answered with yes.
struct ReplaceRules {
    bool operator==(const ReplaceRules&) const = default;
};
/// It is answered with no, or closed.
struct KeepRules {
    bool operator==(const KeepRules&) const = default;
};
struct MatchCarrier {
    bool operator==(const MatchCarrier&) const = default;
};
struct ClearCalibration {
    bool operator==(const ClearCalibration&) const = default;
};

// The rules.
struct SetRuleEnabled {
    UUID rule;
    bool enabled = true;
    bool operator==(const SetRuleEnabled&) const = default;
};
struct SetRuleLevel {
    UUID rule;
    ActionLevel level = ActionLevel::notify;
    bool operator==(const SetRuleLevel&) const = default;
};
struct AddRule {
    Seconds window{60.0};
    bool operator==(const AddRule&) const = default;
};
struct SetEnforcementAction {
    EnforcementAction action = EnforcementAction::suspend;
    bool operator==(const SetEnforcementAction&) const = default;
};

// The applications.
struct SetPolicy {
    std::string app;
    AppPolicy policy = AppPolicy::global;
    bool operator==(const SetPolicy&) const = default;
};
struct RemovePolicy {
    std::string app;
    bool operator==(const RemovePolicy&) const = default;
};
struct AddDevTools {
    bool operator==(const AddDevTools&) const = default;
};
struct OpenPicker {
    bool operator==(const OpenPicker&) const = default;
};
struct FilterPicker {
    std::string query;
    bool operator==(const FilterPicker&) const = default;
};
/// Sets the policy, and closes the picker.
struct PickPolicy {
    std::string app;
    AppPolicy policy = AppPolicy::global;
    bool operator==(const PickPolicy&) const = default;
};
struct ClosePicker {
    bool operator==(const ClosePicker&) const = default;
};

// The details of one application.
struct OpenDetails {
    std::string app;
    bool operator==(const OpenDetails&) const = default;
};
struct CloseDetails {
    bool operator==(const CloseDetails&) const = default;
};
struct ExplainOnline {
    std::string app;
    bool operator==(const ExplainOnline&) const = default;
};
struct AnswerExplainConsent {
    std::string app;
    bool granted = false;
    bool operator==(const AnswerExplainConsent&) const = default;
};
struct UnmuteAsks {
    std::string app;
    bool operator==(const UnmuteAsks&) const = default;
};
struct ResumeWatching {
    std::string app;
    bool operator==(const ResumeWatching&) const = default;
};

/// The page about the program: the view has put the diagnostics on the clipboard, or a moment has passed since.
struct ShowCopied {
    bool copied = true;
    bool operator==(const ShowCopied&) const = default;
};

/// Whether the user's session starts the program. `perform` leaves it to whoever shows the window and knows the
/// session.
struct SetStartAtLogin {
    bool on = true;
    bool operator==(const SetStartAtLogin&) const = default;
};

/// The first-run window is done with.
struct StartGuarding {
    bool operator==(const StartGuarding&) const = default;
};

} // namespace SettingsActions

using SettingsAction =
    std::variant<SettingsActions::SelectTab, SettingsActions::CloseWindow, SettingsActions::SelectProfile,
                 SettingsActions::RenameProfile, SettingsActions::AddProfile, SettingsActions::DeleteProfile,
                 SettingsActions::SetUsageProfile, SettingsActions::EditNumber, SettingsActions::CommitNumber,
                 SettingsActions::RederiveRules, SettingsActions::ReplaceRules, SettingsActions::KeepRules,
                 SettingsActions::MatchCarrier, SettingsActions::ClearCalibration, SettingsActions::SetRuleEnabled,
                 SettingsActions::SetRuleLevel, SettingsActions::AddRule, SettingsActions::SetEnforcementAction,
                 SettingsActions::SetPolicy, SettingsActions::RemovePolicy, SettingsActions::AddDevTools,
                 SettingsActions::OpenPicker, SettingsActions::FilterPicker, SettingsActions::PickPolicy,
                 SettingsActions::ClosePicker, SettingsActions::OpenDetails, SettingsActions::CloseDetails,
                 SettingsActions::ExplainOnline, SettingsActions::AnswerExplainConsent, SettingsActions::UnmuteAsks,
                 SettingsActions::ResumeWatching, SettingsActions::ShowCopied, SettingsActions::SetStartAtLogin,
                 SettingsActions::StartGuarding>;

} // namespace quellon
