#include "QuellonCore/Presentation/AppsTabModel.h"

#include "SettingsWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AppsTab : public testing::Test {
protected:
    SettingsWorld world;
    AppsTabModel model() { return AppsTabModel::of(world.engine, world.state); }
    std::vector<std::string> candidates()
    {
        std::vector<std::string> result;
        for (const auto& row : AppPickerModel::of(world.engine, world.state.query).rows) result.push_back(row.app);
        return result;
    }
};

TEST_F(AppsTab, empty)
{
    const auto shown = model();
    EXPECT_EQ(AppsTabModel::intro, "Blocked apps are asked about the moment they reach for the network, not after they "
                                   "have already spent your data.");
    EXPECT_THAT(shown.rows, IsEmpty());
    ASSERT_TRUE(shown.empty);
    EXPECT_EQ(shown.empty->symbol, "square.stack.3d.up.slash");
    EXPECT_EQ(shown.empty->title, "Every app follows the global rules");
    EXPECT_EQ(shown.empty->text, "Add one here to always block it, or never limit it.");
    EXPECT_EQ(shown.add, (FormButton{"Add app…", "Add an app to the policy list", OpenPicker{}}));
    EXPECT_EQ(shown.addDevTools,
              (FormButton{"Add common dev tools", "Block common development tools on hotspot", AddDevTools{}}));
    EXPECT_EQ(shown.picker, std::nullopt);
}

TEST_F(AppsTab, rows)
{
    world.does(SetPolicy{"zeta", AppPolicy::always});
    world.does(SetPolicy{"alpha", AppPolicy::never});
    world.does(SetPolicy{"evil\n", AppPolicy::always});
    const auto shown = model();
    EXPECT_EQ(shown.empty, std::nullopt);
    ASSERT_THAT(shown.rows, SizeIs(3));
    EXPECT_EQ(shown.rows[0].app, "evil�");
    EXPECT_EQ(shown.rows[1].app, "zeta");
    EXPECT_EQ(shown.rows[2].app, "alpha") << "those that are blocked come first";
    const auto& row = shown.rows[0];
    EXPECT_EQ(row.details.symbol, "info.circle");
    EXPECT_EQ(row.details.title, "");
    EXPECT_EQ(row.details.accessibilityLabel, "Details for evil�");
    EXPECT_EQ(row.details.action, SettingsAction{OpenDetails{"evil\n"}}) << "an action goes by the engine's label";
    EXPECT_EQ(row.policy.accessibilityLabel, "Policy for evil�");
    EXPECT_EQ(row.policy.label, "");
    ASSERT_THAT(row.policy.options, SizeIs(3));
    EXPECT_EQ(row.policy.options[0].title, "Never");
    EXPECT_EQ(row.policy.options[1].title, "Global");
    EXPECT_EQ(row.policy.options[2].title, "Block");
    EXPECT_EQ(row.policy.selected, 2U);
    EXPECT_EQ(shown.rows[2].policy.selected, 0U);
    EXPECT_EQ(row.remove.symbol, "minus.circle");
    EXPECT_EQ(row.remove.accessibilityLabel, "Remove evil�");
}

TEST_F(AppsTab, controlsOfARow)
{
    world.does(SetPolicy{"zeta", AppPolicy::always});
    world.does(SetPolicy{"alpha", AppPolicy::never});
    world.does(model().rows[0].policy.options[0].action);
    EXPECT_EQ(world.settings().appPolicies.policy("zeta"), AppPolicy::never);
    world.does(model().rows[1].policy.options[1].action);
    EXPECT_EQ(world.settings().appPolicies.policy("zeta"), AppPolicy::global);
    ASSERT_THAT(model().rows, SizeIs(1)) << "an application under the global rules is not listed";
    world.does(model().rows[0].details.action);
    EXPECT_EQ(world.engine.detailApp(), "alpha");
    world.does(model().rows[0].remove.action);
    EXPECT_TRUE(world.settings().appPolicies.isEmpty());
}

TEST_F(AppsTab, addDevTools)
{
    world.does(SetPolicy{"npm", AppPolicy::never});
    world.does(model().addDevTools.action);
    EXPECT_EQ(world.settings().appPolicies.policy("npm"), AppPolicy::never);
    EXPECT_EQ(world.settings().appPolicies.policy("git"), AppPolicy::always);
    EXPECT_THAT(model().rows, SizeIs(13));
}

TEST_F(AppsTab, picker)
{
    world.move({{"small", mega}, {"云盘", 3 * mega}});
    world.does(model().add.action);
    ASSERT_TRUE(model().picker);
    const auto shown = *model().picker;
    EXPECT_EQ(AppPickerModel::title, "Apps seen using data");
    EXPECT_EQ(AppPickerModel::text,
              "Only apps that actually used the network show up here — command line tools included.");
    EXPECT_EQ(shown.filter, (FormText{"Filter", "Filter", ""}));
    EXPECT_EQ(shown.cancel.title, "Cancel");
    ASSERT_THAT(shown.rows, SizeIs(2));
    EXPECT_EQ(shown.rows[0].app, "云盘");
    EXPECT_EQ(shown.rows[0].bytes, "3.0 MB");
    EXPECT_EQ(shown.rows[0].details.accessibilityLabel, "Details for 云盘");
    EXPECT_EQ(shown.rows[1].block,
              (FormButton{"Block", "Always block small on hotspot", PickPolicy{"small", AppPolicy::always}}));
    EXPECT_EQ(shown.rows[1].never,
              (FormButton{"Never limit", "Never limit small", PickPolicy{"small", AppPolicy::never}}));

    world.does(shown.rows[1].block.action);
    EXPECT_EQ(world.settings().appPolicies.policy("small"), AppPolicy::always);
    EXPECT_EQ(model().picker, std::nullopt);
    world.does(model().add.action);
    world.does(shown.rows[0].never.action);
    EXPECT_EQ(world.settings().appPolicies.policy("云盘"), AppPolicy::never);
    EXPECT_EQ(model().picker, std::nullopt);
    world.does(model().add.action);
    world.does(shown.rows[0].details.action);
    EXPECT_TRUE(model().picker) << "the details leave it open";
    world.does(shown.cancel.action);
    EXPECT_EQ(model().picker, std::nullopt);
}

TEST_F(AppsTab, filter)
{
    world.move({{"Ärger", 4}, {"WebKit", 3}, {"kit", 2}, {"node", 1}});
    struct Case {
        const char* name;
        const char* query;
        std::vector<std::string> found;
    };
    const Case cases[] = {
        {"none", "", {"Ärger", "WebKit", "kit", "node"}},
        {"part of a name", "ode", {"node"}},
        {"another case", "KIT", {"WebKit", "kit"}},
        {"another case beyond ASCII", "äRG", {"Ärger"}},
        {"nothing has it", "x", {}},
        {"a blank counts", " ", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        world.does(FilterPicker{c.query});
        EXPECT_EQ(candidates(), c.found);
    }
    world.does(OpenPicker{});
    EXPECT_EQ(world.state.query, "") << "a picker that is opened anew has no filter";
}

TEST_F(AppsTab, fortyCandidates)
{
    std::vector<PanelWorld::Traffic> traffic;
    for (std::uint64_t i = 0; i < 41; ++i) traffic.push_back({fmt::format("app{:02}", i), 1'000 - i});
    world.move(traffic);
    EXPECT_THAT(candidates(), SizeIs(40));
    world.does(FilterPicker{"app40"});
    EXPECT_THAT(candidates(), IsEmpty()) << "the filter looks among the forty";
}

} // namespace
} // namespace quellon
