#include "QuellonCore/Rules/BreachResponse.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Kind = BreachResponse::Kind;

TEST(BreachResponse, decide)
{
    struct Case {
        const char* name;
        ActionLevel level;
        EnforcementAction action;
        bool hasTargets;
        std::optional<std::string_view> reason;
        BreachResponse response;
    };
    constexpr const char* why = "system process";
    const BreachResponse enforce{Kind::enforce, {}};
    const BreachResponse notify{Kind::notifyUser, {}};
    const BreachResponse silent{Kind::recordSilently, why};
    const Case cases[] = {
        {"a pause with a target", ActionLevel::enforce, EnforcementAction::suspend, true, {}, enforce},
        {"a request to quit with a target", ActionLevel::enforce, EnforcementAction::terminate, true, {}, enforce},
        {"a kill with a target", ActionLevel::enforce, EnforcementAction::kill, true, {}, enforce},
        {"one process protected, another not", ActionLevel::enforce, EnforcementAction::kill, true, why, enforce},
        {"no target and a reason", ActionLevel::enforce, EnforcementAction::suspend, false, why, silent},
        {"no target and no reason", ActionLevel::enforce, EnforcementAction::suspend, false, {}, notify},
        {"only a warning", ActionLevel::enforce, EnforcementAction::warn, true, {}, notify},
        {"only a warning, one process protected", ActionLevel::enforce, EnforcementAction::warn, true, why, notify},
        {"only a warning, all protected", ActionLevel::enforce, EnforcementAction::warn, false, why, silent},
        {"ask with a target", ActionLevel::ask, EnforcementAction::kill, true, {}, notify},
        {"ask, one process protected", ActionLevel::ask, EnforcementAction::kill, true, why, notify},
        {"ask, all protected", ActionLevel::ask, EnforcementAction::kill, false, why, silent},
        {"notify, all protected", ActionLevel::notify, EnforcementAction::warn, false, why, silent},
        {"highlight with a target", ActionLevel::highlight, EnforcementAction::suspend, true, {}, notify},
        {"an empty reason is a reason",
         ActionLevel::enforce,
         EnforcementAction::kill,
         false,
         "",
         {Kind::recordSilently, ""}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(BreachResponse::decide(c.level, c.action, c.hasTargets, c.reason), c.response);
    }
}

TEST(BreachResponse, whatFollows)
{
    struct Case {
        const char* name;
        BreachResponse response;
        bool notifiesUser;
    };
    const Case cases[] = {
        {"in silence", {Kind::recordSilently, "system process"}, false},
        {"stepping in", {Kind::enforce, {}}, false},
        {"telling", {Kind::notifyUser, {}}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.response.notifiesUser(), c.notifiesUser);
        EXPECT_TRUE(c.response.countsAsTrigger());
    }
    EXPECT_NE((BreachResponse{Kind::recordSilently, "a"}), (BreachResponse{Kind::recordSilently, "b"}));
}

} // namespace
} // namespace quellon
