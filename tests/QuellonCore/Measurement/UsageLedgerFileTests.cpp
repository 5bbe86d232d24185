#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Persistence/StateFile.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

using Bucket = UsageLedger::Bucket;
using Snapshot = UsageLedger::Snapshot;

const Snapshot example{{
    {Date{Seconds{795'261'600.25}},
     {{"Player", 1'048'576}, {"curl", 2'048}},
     {{"Player", {501, 507}}, {"curl", {733}}}},
    {Date{Seconds{795'261'605.25}}, {}, {}},
    {Date{Seconds{795'261'610.25}}, {{"Player", 4'096}}, {{"Player", {501}}}},
}};

TEST(LedgerFile, theDocumentedExampleIsWhatIsReadAndWritten)
{
    const std::string text = documented("ledger.json");
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(decode<Snapshot>(text), example);
    EXPECT_EQ(parseJson(text), toJson(example));
}

TEST(LedgerFile, isOneCompactLine)
{
    const Snapshot snapshot{{{Date{Seconds{0.5}}, {{"a", 1}}, {{"a", {3, 2}}}}}};
    EXPECT_EQ(encode(snapshot), R"({"buckets":[{"at":0.5,"pids":{"a":[2,3]},"usage":{"a":1}}]})");
    EXPECT_EQ(encode(Snapshot{}), R"({"buckets":[]})");
}

TEST(LedgerFile, shapes)
{
    struct Case {
        const char* name;
        const char* text;
        bool isRead;
    };
    constexpr Case cases[] = {
        {"no bucket", R"({"buckets":[]})", true},
        {"an unknown key", R"({"buckets":[{"at":0,"usage":{},"pids":{},"more":1}],"version":2})", true},
        {"whole numbers with a point", R"({"buckets":[{"at":1,"usage":{"a":5.0},"pids":{"a":[7.0]}}]})", true},
        {"pids of an application without usage", R"({"buckets":[{"at":1,"usage":{},"pids":{"a":[7]}}]})", true},
        {"the largest byte count", R"({"buckets":[{"at":1,"usage":{"a":18446744073709551615},"pids":{}}]})", true},
        {"no keys", "{}", false},
        {"a list", "[]", false},
        {"null", "null", false},
        {"null for the buckets", R"({"buckets":null})", false},
        {"an object for the buckets", R"({"buckets":{}})", false},
        {"null for a bucket", R"({"buckets":[null]})", false},
        {"no date", R"({"buckets":[{"usage":{},"pids":{}}]})", false},
        {"no usage", R"({"buckets":[{"at":0,"pids":{}}]})", false},
        {"no pids", R"({"buckets":[{"at":0,"usage":{}}]})", false},
        {"null for the pids", R"({"buckets":[{"at":0,"usage":{},"pids":null}]})", false},
        {"a text for the date", R"({"buckets":[{"at":"0","usage":{},"pids":{}}]})", false},
        {"an infinite date", R"({"buckets":[{"at":1e999,"usage":{},"pids":{}}]})", false},
        {"a fraction of a byte", R"({"buckets":[{"at":0,"usage":{"a":0.5},"pids":{}}]})", false},
        {"negative bytes", R"({"buckets":[{"at":0,"usage":{"a":-1},"pids":{}}]})", false},
        {"too many bytes", R"({"buckets":[{"at":0,"usage":{"a":18446744073709551616},"pids":{}}]})", false},
        {"true for bytes", R"({"buckets":[{"at":0,"usage":{"a":true},"pids":{}}]})", false},
        {"a pid that does not fit", R"({"buckets":[{"at":0,"usage":{},"pids":{"a":[2147483648]}}]})", false},
        {"a lone pid", R"({"buckets":[{"at":0,"usage":{},"pids":{"a":1}}]})", false},
        {"one bad bucket among good ones",
         R"({"buckets":[{"at":0,"usage":{},"pids":{}},{"at":0,"usage":[],"pids":{}}]})", false},
        {"a sum that does not fit",
         R"({"buckets":[{"at":0,"usage":{"a":18446744073709551615},"pids":{}},{"at":1,"usage":{"a":1},"pids":{}}]})",
         false},
        {"large numbers of different applications",
         R"({"buckets":[{"at":0,"usage":{"a":18446744073709551615},"pids":{}},{"at":1,"usage":{"b":1},"pids":{}}]})",
         true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decode<Snapshot>(c.text).has_value(), c.isRead);
    }
}

TEST(LedgerFile, damagedAtAnyByteItIsNotReadAndStays)
{
    ScriptedHost host;
    const Persistence persistence{host.host()};
    const auto file = persistence.directory() / Persistence::ledgerFile;
    persistence.save(example, Persistence::ledgerFile);
    const std::string whole = host.files().get(file).value();
    ASSERT_EQ(persistence.load<Snapshot>(Persistence::ledgerFile), example);

    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const std::string cut = whole.substr(0, length);
        const std::string zeroed = cut + std::string(whole.size() - length, '\0');
        for (const auto& damaged : {cut, zeroed}) {
            host.files().set(file, damaged);
            EXPECT_EQ(persistence.load<Snapshot>(Persistence::ledgerFile), std::nullopt);
            EXPECT_EQ(host.files().get(file), damaged);
        }
    }
    EXPECT_EQ(host.files().writes(), 1U) << "nothing was written after the first save";
}

} // namespace
} // namespace quellon
