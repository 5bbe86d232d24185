#include "QuellonCore/Support/Json.h"

#include <gtest/gtest.h>

#include <limits>

namespace quellon {
namespace {

constexpr std::size_t hundredMegabytes = 100'000'000;

std::string repeated(std::string_view text, std::size_t times)
{
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

/// What a text gives as a `T`; absent when it is no JSON or no `T`.
template <typename T>
std::optional<T> readText(std::string_view text)
{
    const auto json = parseJson(text);
    return json ? fromJson<T>(*json) : std::nullopt;
}

TEST(ParseJson, refusesWhatIsNotJson)
{
    using namespace std::string_view_literals;
    struct Case {
        const char* name;
        std::string_view text;
    };
    constexpr Case cases[] = {
        {"nothing", ""},
        {"blanks", " \n"},
        {"cut in an object", R"({"a":1)"},
        {"cut in a text", R"({"a":"b)"},
        {"cut in an escape", "\"\\"},
        {"cut in a number", "1e"},
        {"zeroes", "\0\0\0\0"sv},
        {"a zeroed tail", "{\"a\":1}\0\0"sv},
        {"a zero in a text", "\"a\0b\""sv},
        {"something after the value", "{} {}"},
        {"a trailing comma", "[1,]"},
        {"a comment", "[1] // one"},
        {"a bare key", "{a:1}"},
        {"NaN", "NaN"},
        {"infinity", "-Infinity"},
        {"a number beyond a double", "1e999"},
        {"a leading plus", "+1"},
        {"leading zeros", "01"},
        {"a text that is not UTF-8", "\"\xFF\""},
        {"an overlong form", "\"\xC0\x80\""},
        {"half a surrogate pair", R"("\ud800")"},
        {"a raw line feed in a text", "\"a\nb\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseJson(c.text), std::nullopt);
    }
}

TEST(ParseJson, readsWhatIsJson)
{
    struct Case {
        const char* name;
        std::string_view text;
        Json value;
    };
    const Case cases[] = {
        {"a lone value", "5", 5},
        {"blanks around", " \t\r\n[ ] ", Json::array()},
        {"a byte-order mark", "\xEF\xBB\xBF{}", Json::object()},
        {"of duplicate keys the last", R"({"a":1,"a":[2]})", {{"a", {2}}}},
        {"an escaped zero", R"("\u0000")", std::string(1, '\0')},
        {"a surrogate pair", R"("\ud83d\udcf6")", "📶"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseJson(c.text), c.value);
    }
}

TEST(ParseJson, depth)
{
    const auto nested = [](std::size_t depth) { return repeated("[", depth) + repeated("]", depth); };
    struct Case {
        const char* name;
        std::string text;
        bool isRead;
    };
    const Case cases[] = {
        {"at the limit", nested(maximumJsonDepth), true},
        {"one beyond", nested(maximumJsonDepth + 1), false},
        {"objects and arrays count together", repeated(R"({"a":[)", 65) + repeated("]}", 65), false},
        {"100,000 levels", nested(100'000), false},
        {"100,000 levels that never close", repeated("[", 100'000), false},
        {"100,000 objects that never close", repeated(R"({"a":)", 100'000), false},
        {"brackets side by side", "[" + repeated("[],", 100'000) + "[]]", true},
        {"brackets in a text", '"' + repeated("[", 1'000) + '"', true},
        {"brackets in a text behind an escaped quote", R"(["\")" + repeated("{", 1'000) + "\"]", true},
        {"brackets behind a text that ends in a backslash", R"(["\\",)" + nested(maximumJsonDepth) + "]", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseJson(c.text).has_value(), c.isRead);
    }
}

TEST(ParseJson, hugeTexts)
{
    EXPECT_EQ(parseJson(std::string(hundredMegabytes, '\0')), std::nullopt);
    EXPECT_EQ(parseJson(std::string(hundredMegabytes, '[')), std::nullopt);
    EXPECT_EQ(parseJson('x' + std::string(hundredMegabytes, ' ')), std::nullopt);
    EXPECT_EQ(parseJson('[' + repeated("0,", 500'000)), std::nullopt) << "cut after half a million numbers";
    const auto numbers = parseJson('[' + repeated("0,", 500'000) + "0]");
    ASSERT_TRUE(numbers);
    EXPECT_EQ(numbers->size(), 500'001U);
}

TEST(ParseJsonMembers, keepsTheNamedMembersAndNothingWithinThem)
{
    struct Case {
        const char* name;
        const char* text;
        Json value;
    };
    const Case cases[] = {
        {"no member", "{}", Json::object()},
        {"named ones of every kind", R"({"a":"x","b":null})", {{"a", "x"}, {"b", nullptr}}},
        {"numbers and flags", R"({"a":1.5,"b":true})", {{"a", 1.5}, {"b", true}}},
        {"others beside them", R"({"c":[{"a":1}],"a":1,"d":{"b":2},"A":3,"":4})", {{"a", 1}}},
        {"a name within another member", R"({"c":{"a":1},"d":[{"a":2}]})", Json::object()},
        {"an object", R"({"a":{"a":1,"b":{}},"b":2})", {{"a", Json::object()}, {"b", 2}}},
        {"a list", R"({"a":[1,[2],{"b":3}],"b":2})", {{"a", Json::array()}, {"b", 2}}},
        {"the same name twice", R"({"a":1,"c":0,"a":2})", {{"a", 2}}},
        {"the same name twice, a list at first", R"({"a":[1],"a":2})", {{"a", 2}}},
        {"the same name twice, a list at last", R"({"a":2,"a":[1]})", {{"a", Json::array()}}},
        {"an escaped name", R"({"\u0061":1})", {{"a", 1}}},
        {"a text", R"("a")", "a"},
        {"a number", "5", 5},
        {"null", "null", nullptr},
        {"a list alone", R"([1,"a",[2],{"a":3}])", Json::array()},
        {"a byte-order mark", "\xEF\xBB\xBF{\"a\":1}", {{"a", 1}}},
    };
    constexpr std::string_view names[] = {"a", "b"};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseJsonMembers(c.text, names), c.value);
    }
}

TEST(ParseJsonMembers, refusesWhatIsNotJsonAlsoWhereNothingIsKept)
{
    constexpr std::string_view names[] = {"a"};
    for (const char* text : {"", "{", R"({"a":1}x)", R"({"b":[1,]})", R"({"b":{"c":01}})", R"({"b":[1e999]})",
                             "{\"b\":\"\xFF\"}", R"({"b":["\ud800"]})", R"({"b":{c:1}})", "[1,]"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parseJsonMembers(text, names), std::nullopt);
    }
    const auto deep = [&](std::size_t depth) {
        return parseJsonMembers(R"({"b":)" + repeated("[", depth - 1) + repeated("]", depth - 1) + "}", names);
    };
    EXPECT_EQ(deep(maximumJsonDepth), Json::object());
    EXPECT_EQ(deep(maximumJsonDepth + 1), std::nullopt);
}

TEST(DumpJson, isCompactAndInOneLine)
{
    const Json value{{"b", {1, 2.5, nullptr, true}}, {"a", "line\nfeed é"}};
    EXPECT_EQ(dumpJson(value), R"({"a":"line\nfeed é","b":[1,2.5,null,true]})");
}

TEST(DumpJson, refusesTheWholeForOneBadValue)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        const char* name;
        Json value;
    };
    const Case cases[] = {
        {"NaN", Json(notANumber)},
        {"infinity deep inside", {{"a", {1, {{"b", infinity}}}}}},
        {"minus infinity", {-infinity}},
        {"a text that is not UTF-8", {{"a", "\xFF"}}},
        {"a key that is not UTF-8", {{"\xC3(", 1}}},
        {"bytes", Json::binary({1, 2})},
        {"no value", Json(Json::value_t::discarded)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(dumpJson(c.value), std::nullopt);
    }
}

TEST(DumpJson, doublesComeBackUnchanged)
{
    for (const double value : {0.1, 5.0, -0.0, 1e-320, 806'403'600.123456, std::numeric_limits<double>::max()}) {
        const auto text = dumpJson(toJson(value));
        ASSERT_TRUE(text);
        EXPECT_EQ(readText<double>(*text), value) << *text;
    }
}

template <typename T>
struct NumberCase {
    const char* name;
    std::string_view text;
    std::optional<T> value;
};

template <typename T, std::size_t N>
void check(const NumberCase<T> (&cases)[N])
{
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(readText<T>(c.text), c.value);
    }
}

TEST(FromJson, int32)
{
    constexpr NumberCase<std::int32_t> cases[] = {
        {"a whole number", "5", 5},
        {"a fraction of zero", "5.0", 5},
        {"an exponent", "1e3", 1'000},
        {"minus zero", "-0.0", 0},
        {"a fraction", "5.5", std::nullopt},
        {"the largest", "2147483647", std::numeric_limits<std::int32_t>::max()},
        {"beyond the largest", "2147483648", std::nullopt},
        {"the smallest", "-2147483648", std::numeric_limits<std::int32_t>::min()},
        {"below the smallest", "-2147483649", std::nullopt},
        {"true", "true", std::nullopt},
        {"a text", "\"5\"", std::nullopt},
        {"null", "null", std::nullopt},
        {"a list", "[5]", std::nullopt},
    };
    check(cases);
}

TEST(FromJson, uint32)
{
    constexpr NumberCase<std::uint32_t> cases[] = {
        {"the largest", "4294967295", 4'294'967'295U},
        {"beyond the largest", "4294967296", std::nullopt},
        {"negative", "-1", std::nullopt},
    };
    check(cases);
}

TEST(FromJson, int64)
{
    constexpr NumberCase<std::int64_t> cases[] = {
        {"the largest", "9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"beyond the largest", "9223372036854775808", std::nullopt},
        {"beyond the largest, with a point", "9223372036854775808.0", std::nullopt},
        {"the smallest", "-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"the smallest, with a point", "-9223372036854775808.0", std::numeric_limits<std::int64_t>::min()},
        {"below the smallest", "-9223372036854777856", std::nullopt},
        {"huge", "1e300", std::nullopt},
    };
    check(cases);
}

TEST(FromJson, uint64)
{
    constexpr NumberCase<std::uint64_t> cases[] = {
        {"zero", "0", 0U},
        {"minus zero", "-0", 0U},
        {"the largest", "18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
        {"two to the 64th", "18446744073709551616", std::nullopt},
        {"negative", "-1", std::nullopt},
        {"negative, with a point", "-1.0", std::nullopt},
        {"a fraction", "0.5", std::nullopt},
        {"a large one with a point", "1e15", 1'000'000'000'000'000U},
    };
    check(cases);
}

TEST(FromJson, otherTypes)
{
    EXPECT_EQ(readText<double>("5"), 5.0);
    EXPECT_EQ(readText<double>("18446744073709551615"), 18'446'744'073'709'551'616.0);
    EXPECT_EQ(readText<double>("true"), std::nullopt);
    EXPECT_EQ(fromJson<double>(Json(std::numeric_limits<double>::infinity())), std::nullopt);
    EXPECT_EQ(readText<bool>("false"), false);
    EXPECT_EQ(readText<bool>("0"), std::nullopt);
    EXPECT_EQ(readText<std::string>("\"\""), "");
    EXPECT_EQ(readText<std::string>("1"), std::nullopt);
    EXPECT_EQ(readText<Seconds>("2.5"), Seconds{2.5});
    EXPECT_EQ(readText<Date>("806403600.5"), Date{Seconds{806'403'600.5}});
    EXPECT_EQ(readText<Date>("\"2026-07-22\""), std::nullopt);
    EXPECT_EQ(dumpJson(toJson(Date{Seconds{0.25}})), "0.25");
}

TEST(FromJson, identifiers)
{
    constexpr std::string_view upper = "\"0123ABCD-4567-89AB-CDEF-0123456789AB\"";
    const auto id = readText<UUID>("\"0123abcd-4567-89AB-cdef-0123456789ab\"");
    ASSERT_TRUE(id);
    EXPECT_EQ(dumpJson(toJson(*id)), upper);
    EXPECT_EQ(readText<UUID>(upper), id);
    EXPECT_EQ(readText<UUID>("\"0123abcd\""), std::nullopt);
    EXPECT_EQ(readText<UUID>("1"), std::nullopt);
}

TEST(FromJson, collections)
{
    using List = std::vector<std::int32_t>;
    using Set = std::set<std::int32_t>;
    using Map = std::map<std::string, std::uint64_t>;
    EXPECT_EQ(readText<List>("[3,1,1]"), (List{3, 1, 1}));
    EXPECT_EQ(readText<List>("[3,null]"), std::nullopt);
    EXPECT_EQ(readText<List>("{}"), std::nullopt);
    EXPECT_EQ(readText<Set>("[3,1,1]"), (Set{1, 3}));
    EXPECT_EQ(readText<Set>("[3,1.5]"), std::nullopt);
    EXPECT_EQ(readText<Set>("3"), std::nullopt);
    EXPECT_EQ(readText<Map>(R"({"b":1,"a":2,"b":3})"), (Map{{"a", 2}, {"b", 3}}));
    EXPECT_EQ(readText<Map>(R"({"a":-1})"), std::nullopt);
    EXPECT_EQ(readText<Map>("[]"), std::nullopt);
    EXPECT_EQ(dumpJson(toJson(List{})), "[]");
    EXPECT_EQ(dumpJson(toJson(Set{3, 1})), "[1,3]");
    EXPECT_EQ(dumpJson(toJson(Map{})), "{}");
    EXPECT_EQ(dumpJson(toJson(std::map<std::string, List>{{"é", {1}}})), R"({"é":[1]})");
}

enum class Color { red, green };
constexpr EnumTable<Color, 2> colors{{{{Color::red, "red", "Red"}, {Color::green, "green", "Green"}}}};
constexpr const auto& enumTable(Color /*type*/)
{
    return colors;
}

struct Record {
    std::string name;
    std::int32_t count = 7;
    std::optional<Color> color;
    std::vector<Color> more;
    bool operator==(const Record&) const = default;

    static std::optional<Record> fromJson(const Json& json)
    {
        JsonFields fields{json};
        Record record;
        fields.required("name", record.name);
        fields.defaulted("count", record.count);
        fields.defaulted("color", record.color);
        fields.defaulted("more", record.more);
        return fields.result(std::move(record));
    }
    Json toJson() const
    {
        Json json = Json::object();
        putField(json, "name", name);
        putField(json, "count", count);
        putField(json, "color", color);
        putField(json, "more", more);
        return json;
    }
};

TEST(JsonFields, readsRecords)
{
    struct Case {
        const char* name;
        std::string_view text;
        std::optional<Record> record;
    };
    const Case cases[] = {
        {"all keys", R"({"name":"a","count":1,"color":"green","more":["red"]})",
         Record{"a", 1, Color::green, {Color::red}}},
        {"missing keys that may be missing", R"({"name":"a"})", Record{"a", 7, {}, {}}},
        {"null where a key may be missing", R"({"name":"a","count":null,"color":null,"more":null})",
         Record{"a", 7, {}, {}}},
        {"an unknown key", R"({"name":"a","else":[{}]})", Record{"a", 7, {}, {}}},
        {"a duplicate key", R"({"name":"a","name":"b"})", Record{"b", 7, {}, {}}},
        {"a missing key that is required", R"({"count":1})", std::nullopt},
        {"null where a key is required", R"({"name":null})", std::nullopt},
        {"a wrong type where a key may be missing", R"({"name":"a","count":"1"})", std::nullopt},
        {"an unknown case", R"({"name":"a","color":"blue"})", std::nullopt},
        {"a case in other letters", R"({"name":"a","color":"Red"})", std::nullopt},
        {"an unknown case in a list", R"({"name":"a","more":["red","blue"]})", std::nullopt},
        {"a list", R"([{"name":"a"}])", std::nullopt},
        {"null", "null", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(readText<Record>(c.text), c.record);
    }
}

/// A list of texts that share an ending, which only its reader knows; at most two of them.
struct Ended {
    std::vector<std::string> texts{"default"};
    bool operator==(const Ended&) const = default;

    static std::optional<Ended> fromJson(const Json& json, const std::string& ending)
    {
        JsonFields fields{json};
        Ended record;
        fields.defaulted("texts", record.texts, [&ending](const Json& value) {
            auto texts = quellon::fromJson<std::vector<std::string>>(value);
            if (texts) {
                for (std::string& each : *texts) each += ending;
            }
            return texts;
        });
        fields.require(record.texts.size() <= 2);
        return fields.result(std::move(record));
    }
};

TEST(JsonFields, readsFieldsWithAReaderAndRequiresMore)
{
    struct Case {
        const char* name;
        std::string_view text;
        std::optional<Ended> record;
    };
    const Case cases[] = {
        {"read by the reader", R"({"texts":["a","b"]})", Ended{{"a!", "b!"}}},
        {"a missing key", "{}", Ended{{"default"}}},
        {"null", R"({"texts":null})", Ended{{"default"}}},
        {"what the reader refuses", R"({"texts":["a",1]})", std::nullopt},
        {"what is required does not hold", R"({"texts":["a","b","c"]})", std::nullopt},
        {"a list", "[]", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Ended::fromJson(parseJson(c.text).value(), "!"), c.record);
    }
}

TEST(JsonFields, anAbsentOptionalIsAnAbsentKey)
{
    EXPECT_EQ(dumpJson(toJson(Record{"a", 1, {}, {}})), R"({"count":1,"more":[],"name":"a"})");
    EXPECT_EQ(dumpJson(toJson(Record{"a", 1, Color::red, {Color::green}})),
              R"({"color":"red","count":1,"more":["green"],"name":"a"})");
}

} // namespace
} // namespace quellon
