#include "ReplayPanel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

/// What a script never sees, since it shows the panel as it opens.
TEST(ReplayPanel, whatIsOpenIsPrinted)
{
    MenuPanelModel model;
    model.tetherHint = MenuPanelModel::NoticeRow{"s", Tint::primary, "t", "x", "1. a\n2. b", {}};
    UsageRow row{{"A", 1, {}}, 0, false, {}, true, {}, "a line"};
    model.usage.rows = {UsageRowModel::of(row, Date{})};
    row.actionLine.reset();
    model.usage.rows.push_back(UsageRowModel::of(row, Date{}));
    const OrderedJson printed = replayPanel(model);
    EXPECT_EQ(printed["tetherHint"]["steps"], "1. a\n2. b");
    const OrderedJson& rows = printed["usage"]["rows"];
    EXPECT_EQ(rows[0]["chevron"], "chevron.down");
    EXPECT_EQ(rows[0]["details"].dump(),
              R"({"whatItIs":{"text":"Not in the knowledge pack yet — see Details for its activity.",)"
              R"("tint":"secondary"},"actionLine":"a line",)"
              R"("button":{"title":"Details…","accessibilityLabel":"Open details for A"}})");
    EXPECT_FALSE(rows[1]["details"].contains("actionLine"));
}

TEST(ReplayPanel, sectionsInTheirOrderAndOnlyWhatIsShown)
{
    std::string keys;
    const OrderedJson printed = replayPanel(MenuPanelModel{});
    for (const auto& [key, value] : printed.items()) keys += key + " ";
    EXPECT_EQ(keys, "header usage liveness footer ");
}

TEST(ReplayPanel, gapsOfTheBudget)
{
    MenuPanelModel model;
    model.budget = BudgetPresentation::Row{};
    EXPECT_FALSE(replayPanel(model)["budget"].contains("gaps"));
    model.budget->gaps = "at least";
    model.budget->today = BudgetPresentation::Today{"a / b", "", Tint::yellow};
    const OrderedJson printed = replayPanel(model)["budget"];
    EXPECT_EQ(printed["gaps"].dump(), R"({"text":"at least","tint":"orange"})");
    EXPECT_EQ(printed["today"].dump(), R"({"title":"Today","amounts":"a / b","tint":"yellow"})");
}

} // namespace
} // namespace quellon
