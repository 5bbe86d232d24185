#include "QuellonCore/Presentation/AppActionSummary.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>

namespace quellon {
namespace {

using Record = EnforcementHistory::Record;

constexpr Date now{Seconds{800'000'000.0}};

TEST(AppActionSummary, ofAnEmptyHistory)
{
    EXPECT_EQ(AppActionSummary::of("app", {}, now), AppActionSummary{});
    EXPECT_EQ(AppActionSummary{}.policy, AppPolicy::global);
}

TEST(AppActionSummary, countsWhatIsInTheWindow)
{
    using Kind = EnforcementHistory::Kind;
    const auto record = [](double age, std::uint64_t bytes, std::optional<Kind> kind, const char* app = "app") {
        return Record{app, now - Seconds{age}, bytes, std::nullopt, std::nullopt, std::nullopt, kind};
    };
    EnforcementHistory history{{record(21'600.1, 100, {}), record(21'600.0, 1, {}), record(60.0, 10, Kind::asked),
                                record(50.0, 20, Kind::asked), record(40.0, 2, Kind::enforced, "other")},
                               {}};
    AppActionSummary expected;
    expected.enforcementCount = 1;
    expected.wastedBytesFloor = 1;
    expected.askCount = 2;
    expected.askedBytesFloor = 30;
    expected.lastRecord = history.records[1];
    EXPECT_EQ(AppActionSummary::of("app", history, now), expected);

    history.records.push_back(record(70.0, 4, Kind::enforced));
    expected.enforcementCount = 2;
    expected.wastedBytesFloor = 5;
    expected.lastRecord = history.records.back();
    expected.loopBreakerActive = true;
    EXPECT_EQ(AppActionSummary::of("app", history, now), expected);
}

} // namespace
} // namespace quellon
