#include "QuellonCore/Budget/BudgetStore.h"
#include "QuellonCore/Persistence/StateFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace quellon {
namespace {

const BudgetStore full{12.5,
                       20,
                       {{"2026-03-19", 1'048'576}, {"2026-03-20", 18'446'744}},
                       -4'096,
                       BudgetStore::InterfaceReading{"en0", 9'876'543'210, Date{Seconds{795'261'600.25}}},
                       2,
                       Date{Seconds{795'261'000.5}}};

TEST(BudgetFile, isOneCompactLine)
{
    EXPECT_EQ(encode(full), R"({"billingCycleStartDay":20,"calibrationOffsetBytes":-4096,)"
                            R"("days":[{"bytes":1048576,"day":"2026-03-19"},{"bytes":18446744,"day":"2026-03-20"}],)"
                            R"("interfaceBaseline":{"at":795261600.25,"interface":"en0","totalBytes":9876543210},)"
                            R"("lastUnmeasuredGapAt":795261000.5,"planGB":12.5,"unmeasuredGaps":2})");
    EXPECT_EQ(encode(BudgetStore{}), R"({"billingCycleStartDay":1,"calibrationOffsetBytes":0,"days":[],)"
                                     R"("planGB":30.0,"unmeasuredGaps":0})")
        << "the optional keys are absent when empty";
    EXPECT_EQ(decode<BudgetStore>(encode(full)), full);
}

TEST(BudgetFile, missingKeys)
{
    EXPECT_EQ(decode<BudgetStore>("{}"), BudgetStore{});
    EXPECT_EQ(decode<BudgetStore>("{}"), (BudgetStore{30.0, 1, {}, 0, std::nullopt, 0, std::nullopt}));
    EXPECT_EQ(decode<BudgetStore>(R"({"planGB":7,"days":[{"day":"2026-03-01","bytes":5}],"later":true})"),
              (BudgetStore{7.0, 1, {{"2026-03-01", 5}}, 0, {}, 0, {}}));
}

TEST(BudgetFile, startDayIsBroughtIntoTheMonth)
{
    struct Case {
        const char* name;
        const char* text;
        std::int64_t day;
    };
    constexpr Case cases[] = {
        {"0 loads as 1", R"({"billingCycleStartDay":0})", 1},
        {"31 loads as 28", R"({"billingCycleStartDay":31})", 28},
        {"negative", R"({"billingCycleStartDay":-9})", 1},
        {"huge", R"({"billingCycleStartDay":9223372036854775807})", 28},
        {"28", R"({"billingCycleStartDay":28.0})", 28},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto store = decode<BudgetStore>(c.text);
        ASSERT_TRUE(store);
        EXPECT_EQ(store->billingCycleStartDay, c.day);
    }
}

TEST(BudgetFile, shapes)
{
    struct Case {
        const char* name;
        const char* text;
        bool isRead;
    };
    constexpr Case cases[] = {
        {"null for what may be missing", R"({"interfaceBaseline":null,"lastUnmeasuredGapAt":null,"days":null})", true},
        {"a list", "[]", false},
        {"a text for the plan", R"({"planGB":"30"})", false},
        {"a fraction of a start day", R"({"billingCycleStartDay":1.5})", false},
        {"an entry without a day", R"({"days":[{"bytes":5}]})", false},
        {"an entry without bytes", R"({"days":[{"day":"2026-03-01"}]})", false},
        {"null for an entry's bytes", R"({"days":[{"day":"2026-03-01","bytes":null}]})", false},
        {"negative bytes", R"({"days":[{"day":"2026-03-01","bytes":-1}]})", false},
        {"a fraction of a byte", R"({"days":[{"day":"2026-03-01","bytes":5.5}]})", false},
        {"2^64 bytes", R"({"days":[{"day":"2026-03-01","bytes":18446744073709551616}]})", false},
        {"a baseline without an interface", R"({"interfaceBaseline":{"totalBytes":1,"at":0}})", false},
        {"a baseline without a total", R"({"interfaceBaseline":{"interface":"en0","at":0}})", false},
        {"a baseline without a date", R"({"interfaceBaseline":{"interface":"en0","totalBytes":1}})", false},
        {"the largest counter",
         R"({"interfaceBaseline":{"interface":"","totalBytes":18446744073709551615,"at":1e300}})", true},
        {"a plan of nothing", R"({"planGB":0})", true},
        {"a little less than nothing, which is 0 bytes", R"({"planGB":-1e-10})", true},
        {"a negative plan", R"({"planGB":-1})", false},
        {"a plan of 2^64 bytes", R"({"planGB":17179869184})", false},
        {"a plan without measure", R"({"planGB":1e300})", false},
        {"the largest sum", R"({"days":[{"day":"a","bytes":4611686018427387903},{"day":"b","bytes":1}]})", true},
        {"a byte more", R"({"days":[{"day":"a","bytes":4611686018427387904},{"day":"b","bytes":1}]})", false},
        {"a day that no sum holds", R"({"days":[{"day":"a","bytes":18446744073709551615}]})", false},
        {"the largest correction", R"({"calibrationOffsetBytes":4611686018427387904})", true},
        {"a byte more than that", R"({"calibrationOffsetBytes":4611686018427387904,"days":[{"day":"a","bytes":1}]})",
         false},
        {"a correction of a byte beside the largest sum",
         R"({"calibrationOffsetBytes":1,"days":[{"day":"a","bytes":4611686018427387904}]})", false},
        {"the smallest correction",
         R"({"calibrationOffsetBytes":-9223372036854775808,"days":[{"day":"a","bytes":4611686018427387904}]})", true},
        {"a correction that does not fit", R"({"calibrationOffsetBytes":9223372036854775808})", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto store = decode<BudgetStore>(c.text);
        EXPECT_EQ(store.has_value(), c.isRead);
        if (!store) continue;
        EXPECT_EQ(decode<BudgetStore>(encode(*store)), store);
        // Nothing that is read ends the program, whenever it is asked.
        for (const double at : {-1e300, -5e10, 0.0, 8e8, 1e300}) {
            BudgetStore used = *store;
            (void)used.accountFor({1'000'000, 1'000'000}, "en1", Date{Seconds{at}}, Calendar{});
            (void)used.accountFor({2'000'000, 1'000'000}, "en1", Date{Seconds{at}}, Calendar{});
            (void)used.status(Date{Seconds{at}}, Calendar{});
            (void)used.dailyStatus(Date{Seconds{at}}, Calendar{});
        }
    }
}

TEST(BudgetFile, whatIsWrittenIsReadAgain)
{
    std::mt19937_64 random{5};
    const auto date = [&random] { return Date{Seconds{static_cast<double>(random() >> 33) / 7.0}}; };
    for (int i = 0; i < 200; ++i) {
        BudgetStore store;
        store.planGB = static_cast<double>(random() >> 44) / 9.0;
        store.billingCycleStartDay = static_cast<std::int64_t>(random() % 40);
        for (auto count = random() % 5; count > 0; --count)
            store.days.push_back({std::to_string(random()), random() >> (4 + random() % 60)});
        store.calibrationOffsetBytes = static_cast<std::int64_t>(random() >> 3) - (std::int64_t{1} << 60);
        if (random() % 2 == 0)
            store.interfaceBaseline = BudgetStore::InterfaceReading{"en" + std::to_string(random()), random(), date()};
        store.unmeasuredGaps = static_cast<std::int64_t>(random() >> 1);
        if (random() % 2 == 0) store.lastUnmeasuredGapAt = date();
        const std::string text = encode(store);
        const auto again = decode<BudgetStore>(text);
        EXPECT_EQ(again.has_value() ? *again : BudgetStore{}, store) << text;
        EXPECT_EQ(encode(*again), text);
    }
}

} // namespace
} // namespace quellon
