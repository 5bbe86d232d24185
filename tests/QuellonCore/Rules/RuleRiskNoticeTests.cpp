#include "QuellonCore/Rules/RuleRiskNotice.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(RuleRiskNotice, forceQuitWarning)
{
    const GuardRule enforcing{.id = {}, .level = ActionLevel::enforce};
    const GuardRule disabled{.id = {}, .level = ActionLevel::enforce, .enabled = false};
    const GuardRule asking{.id = {}, .level = ActionLevel::ask};
    struct Case {
        const char* name;
        std::vector<GuardRule> rules;
        EnforcementAction action;
        bool warns;
    };
    const Case cases[] = {
        {"no rules", {}, EnforcementAction::kill, false},
        {"an enforcing rule and a kill", {enforcing}, EnforcementAction::kill, true},
        {"one among others", {asking, disabled, enforcing}, EnforcementAction::kill, true},
        {"a disabled enforcing rule", {disabled}, EnforcementAction::kill, false},
        {"only lower levels", {asking}, EnforcementAction::kill, false},
        {"a request to quit", {enforcing}, EnforcementAction::terminate, false},
        {"a pause", {enforcing}, EnforcementAction::suspend, false},
        {"a warning", {enforcing}, EnforcementAction::warn, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto warning = RuleRiskNotice::forceQuitWarning(c.rules, c.action);
        ASSERT_EQ(warning.has_value(), c.warns);
        if (!c.warns) continue;
        EXPECT_EQ(*warning, "A rule is set to step in automatically, so an app that crosses it is force-quit with no "
                            "chance to save. Pause freezes it instead, and it picks up where it left off.");
    }
}

} // namespace
} // namespace quellon
