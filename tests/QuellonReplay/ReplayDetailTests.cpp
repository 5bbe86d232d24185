#include "ReplayDetail.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

/// What a script never sees, since it shows the details as they open.
TEST(ReplayDetail, theQuestionAboutLookupsIsPrinted)
{
    AppDetailModel model;
    model.unknown = AppDetailModel::Unknown{"u", {}, ExplainConsentRow::of("A", "Mac"), {}, {}};
    model.unknown->consent->text = "x";
    EXPECT_EQ(replayDetail(model)["unknown"].dump(),
              R"({"text":"u","consent":{"title":"Look up unknown apps online?","text":"x","buttons":[)"
              R"({"title":"Allow lookups","accessibilityLabel":"Allow online app lookups"},)"
              R"({"title":"No thanks","accessibilityLabel":"Decline online app lookups"}]}})");
    model.unknown->consent.reset();
    EXPECT_EQ(replayDetail(model)["unknown"].dump(), R"({"text":"u"})");
}

TEST(ReplayDetail, whatIsNotThereIsLeftOut)
{
    const OrderedJson printed = replayDetail(AppDetailModel{});
    for (const char* key : {"subtitle", "identity", "unknown"}) EXPECT_FALSE(printed.contains(key)) << key;
    EXPECT_FALSE(printed["usage"].contains("chronic"));
    EXPECT_FALSE(printed["policy"].contains("selected"));
    EXPECT_EQ(printed["pauseControls"].size(), 0U);
}

} // namespace
} // namespace quellon
