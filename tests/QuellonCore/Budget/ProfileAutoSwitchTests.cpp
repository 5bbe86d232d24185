#include "QuellonCore/Budget/ProfileAutoSwitch.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(ProfileAutoSwitch, decide)
{
    constexpr UUID active{{1}};
    constexpr UUID other{{2}};
    constexpr UUID gone{{3}};
    std::vector<PlanProfile> plans(2);
    plans[0].id = active;
    plans[1].id = other;
    const ProfileAutoSwitch::Memory memory{{"en0", active}, {"en5", other}, {"en6", gone}};
    struct Case {
        const char* name;
        const char* interface;
        bool isMetered;
        ProfileAutoSwitch::Memory memory;
        std::optional<UUID> plan;
    };
    const Case cases[] = {
        {"nothing remembered, metered", "en5", true, {}, std::nullopt},
        {"nothing remembered, not metered", "en5", false, {}, std::nullopt},
        {"an interface seen for the first time, metered", "en7", true, memory, std::nullopt},
        {"an interface seen for the first time, not metered", "en7", false, memory, std::nullopt},
        {"no interface", "", true, memory, std::nullopt},
        {"the active plan is the remembered one", "en0", true, memory, std::nullopt},
        {"the remembered plan was deleted", "en6", true, memory, std::nullopt},
        {"another plan, not metered", "en5", false, memory, std::nullopt},
        {"another plan, metered", "en5", true, memory, other},
        {"an interface of another case", "EN5", true, memory, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ProfileAutoSwitch::decide(c.interface, c.isMetered, c.memory, active, plans), c.plan);
    }
    EXPECT_EQ(ProfileAutoSwitch::decide("en5", true, memory, active, {}), std::nullopt) << "no plan at all";
}

} // namespace
} // namespace quellon
