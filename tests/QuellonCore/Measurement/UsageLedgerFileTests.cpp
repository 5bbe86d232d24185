#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Persistence/StateFile.h"

#include "ScriptedHost.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>

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
    EXPECT_EQ(decodeJson<Snapshot>(text), example);
    EXPECT_EQ(parseJson(text), toJson(example));
}

TEST(LedgerFile, isOneCompactLine)
{
    const Snapshot snapshot{{{Date{Seconds{0.5}}, {{"a", 1}}, {{"a", {3, 2}}}}}};
    EXPECT_EQ(encodeJson(snapshot), R"({"buckets":[{"at":0.5,"pids":{"a":[2,3]},"usage":{"a":1}}]})");
    EXPECT_EQ(encodeJson(Snapshot{}), R"({"buckets":[]})");
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
        {"blanks", " { \"buckets\" : [ { \"at\" : 1, \"usage\" : { \"a\" : 5 }, \"pids\" : { } } ]\n}\n", true},
        {"keys in another order", R"({"buckets":[{"usage":{"b":1,"a":2},"pids":{"b":[2,1,2]},"at":1}]})", true},
        {"an application twice", R"({"buckets":[{"at":1,"pids":{},"usage":{"a":-1,"a":2}}]})", true},
        {"the buckets twice, the last ones readable", R"({"buckets":[null],"buckets":[]})", true},
        {"the buckets twice, the first ones readable", R"({"buckets":[],"buckets":[null]})", false},
        {"escapes in a name", R"({"buckets":[{"at":1,"pids":{},"usage":{"\"\u00e4\\":2}}]})", true},
        {"a name that is not UTF-8", "{\"buckets\":[{\"at\":1,\"pids\":{},\"usage\":{\"\xC3\":2}}]}", false},
        {"a tab in a name", "{\"buckets\":[{\"at\":1,\"pids\":{},\"usage\":{\"a\tb\":2}}]}", false},
        {"a date with an exponent", R"({"buckets":[{"at":-7.95e8,"pids":{},"usage":{}}]})", true},
        {"a negative pid", R"({"buckets":[{"at":1,"pids":{"a":[-1,0]},"usage":{}}]})", true},
        {"a zero before a number", R"({"buckets":[{"at":1,"pids":{},"usage":{"a":01}}]})", false},
        {"a plus before a number", R"({"buckets":[{"at":1,"pids":{},"usage":{"a":+1}}]})", false},
        {"a plus before a date", R"({"buckets":[{"at":+1,"pids":{},"usage":{}}]})", false},
        {"no digits", R"({"buckets":[{"at":1,"pids":{},"usage":{"a":}}]})", false},
        {"a comma too many", R"({"buckets":[{"at":1,"pids":{"a":[1,]},"usage":{}}]})", false},
        {"something behind", R"({"buckets":[]}])", false},
        {"an unknown key", R"({"buckets":[{"at":0,"usage":{},"pids":{},"more":1}],"version":2})", true},
        {"whole numbers with a point", R"({"buckets":[{"at":1,"usage":{"a":5.0},"pids":{"a":[7.0]}}]})", true},
        {"pids of an application without usage", R"({"buckets":[{"at":1,"usage":{},"pids":{"a":[7]}}]})", true},
        {"as many bytes as a file may hold", R"({"buckets":[{"at":1,"usage":{"a":4611686018427387904},"pids":{}}]})",
         true},
        {"one byte more", R"({"buckets":[{"at":1,"usage":{"a":4611686018427387905},"pids":{}}]})", false},
        {"the largest byte count", R"({"buckets":[{"at":1,"usage":{"a":18446744073709551615},"pids":{}}]})", false},
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
        {"as many bytes in several samples and applications",
         R"({"buckets":[{"at":0,"usage":{"a":4611686018427387900,"b":1},"pids":{}},{"at":1,"usage":{"a":3},"pids":{}}]})",
         true},
        {"one byte more in another sample",
         R"({"buckets":[{"at":0,"usage":{"a":4611686018427387904},"pids":{}},{"at":1,"usage":{"a":1},"pids":{}}]})",
         false},
        {"one byte more of another application",
         R"({"buckets":[{"at":0,"usage":{"a":4611686018427387904,"b":1},"pids":{}}]})", false},
        {"one byte more, in the form that is written",
         R"({"buckets":[{"at":0.0,"pids":{},"usage":{"a":4611686018427387904,"b":1}}]})", false},
        {"two applications that come to 2^64 together",
         R"({"buckets":[{"at":0,"usage":{"a":9223372036854775808,"b":9223372036854775808},"pids":{}}]})", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodeJson<Snapshot>(c.text).has_value(), c.isRead);
        EXPECT_EQ(decodeJson<Snapshot>(c.text), decode<Snapshot>(c.text));
    }
}

/// Reads and writes as all other records do, by way of a JSON value.
std::optional<Snapshot> readPlainly(const std::string& text)
{
    return decode<Snapshot>(text);
}
std::optional<std::string> writePlainly(const Snapshot& snapshot)
{
    return dumpJson(toJson(snapshot));
}

TEST(LedgerFile, namesOfEveryKindAreWrittenAsJsonWritesThem)
{
    struct Case {
        const char* name;
        std::string label;
        bool isWritten;
    };
    const Case cases[] = {
        {"empty", "", true},
        {"one letter", "a", true},
        {"eight letters", "terminal", true},
        {"many words", "Some Rather Long Name Of A Program", true},
        {"a quote at the end", "Player 1\"", true},
        {"a backslash among eight", "C:\\Users", true},
        {"a backslash in a short one", "a\\b", true},
        {"the first byte that is no control character", "a b", true},
        {"the last control character", "Some\x1FName", true},
        {"a line feed", "\n", true},
        {"a zero byte", std::string("Some\0Name", 9), true},
        {"the last byte of ASCII", "\x7F\x7F\x7F\x7F\x7F\x7F\x7F\x7F\x7F", true},
        {"letters beyond ASCII", "Übersicht für Jürgen", true},
        {"a short one beyond ASCII", "ä", true},
        {"beyond the basic plane", "\xF0\x9F\x98\x80", true},
        {"beyond ASCII and with a quote", "ä\"ö", true},
        {"a sequence cut short", "Some Name\xC3", false},
        {"a lone continuation", "\x80", false},
        {"a surrogate", "\xED\xA0\x80 and more", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Snapshot snapshot{{{Date{Seconds{1}}, {{c.label, 1}}, {}}, {Date{Seconds{2}}, {}, {{c.label, {2}}}}}};
        const auto text = encodeJson(snapshot);
        EXPECT_EQ(text.has_value(), c.isWritten);
        EXPECT_EQ(text, writePlainly(snapshot));
        if (!text) continue;
        EXPECT_EQ(decodeJson<Snapshot>(*text), snapshot);
    }
}

TEST(LedgerFile, aDateThatIsNotFiniteIsNotWritten)
{
    const Snapshot snapshot{{{Date{}, {}, {}}, {Date{Seconds{std::numeric_limits<double>::infinity()}}, {}, {}}}};
    EXPECT_EQ(encodeJson(snapshot), std::nullopt);
    EXPECT_EQ(writePlainly(snapshot), std::nullopt);
}

/// Random ledgers, and texts that differ from theirs in a few bytes.
class RandomLedger {
public:
    explicit RandomLedger(std::uint64_t seed) : random_{seed} {}

    Snapshot snapshot()
    {
        Snapshot snapshot;
        for (std::uint64_t i = below(4); i > 0; --i) {
            Bucket& bucket = snapshot.buckets.emplace_back();
            bucket.at = Date{Seconds{static_cast<double>(random_() >> (below(3) * 25)) / 1'024.0}};
            for (std::uint64_t app = below(4); app > 0; --app) bucket.usage[label()] = random_() >> (6 + below(58));
            for (std::uint64_t app = below(4); app > 0; --app) {
                auto& pids = bucket.pids[label()];
                for (std::uint64_t pid = below(4); pid > 0; --pid)
                    pids.insert(static_cast<std::int32_t>(below(70'000)));
            }
        }
        return snapshot;
    }

    std::string damaged(std::string text)
    {
        static constexpr std::string_view bytes = "\"\\{}[],:.-+0159eEnu \n\t\xC3\xA4";
        for (std::uint64_t i = 1 + below(2); i > 0; --i) {
            const std::size_t place = below(text.size());
            const char byte = bytes[below(bytes.size())];
            switch (below(4)) {
            case 0:
                text.erase(place, 1 + below(4));
                break;
            case 1:
                text.insert(place, 1, byte);
                break;
            case 2:
                text.insert(place, text.substr(below(text.size()), below(30)));
                break;
            default:
                text[place] = byte;
            }
        }
        return text;
    }

private:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
    std::string label()
    {
        static constexpr std::array<const char*, 9> parts{"a", "Some ", "Program", "\"",  "\\",
                                                          "ä", "\n",    "\x7F",    "日本"};
        std::string label;
        for (std::uint64_t i = below(5); i > 0; --i) label += parts[below(below(3) == 0 ? parts.size() : 3)];
        return label;
    }

    std::mt19937_64 random_;
};

TEST(LedgerFile, isReadAndWrittenAsByWayOfAJsonValue)
{
    RandomLedger random{20'260'101};
    int readable = 0;
    constexpr int rounds = 800;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        const Snapshot snapshot = random.snapshot();
        const auto text = encodeJson(snapshot);
        ASSERT_EQ(text, writePlainly(snapshot));
        ASSERT_EQ(decodeJson<Snapshot>(*text), snapshot);

        const std::string damaged = random.damaged(*text);
        const auto read = decodeJson<Snapshot>(damaged);
        ASSERT_EQ(read, readPlainly(damaged)) << damaged;
        readable += read ? 1 : 0;
    }
    EXPECT_GT(readable, rounds / 20) << "some damage must leave a ledger, or nothing was compared";
    EXPECT_LT(readable, rounds);
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
