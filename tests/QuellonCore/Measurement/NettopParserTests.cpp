#include "QuellonCore/Measurement/NettopParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quellon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Samples = std::vector<ConnectionSample>;

const ConnectionSample web{7, "tcp4 10.0.0.2:5<->1.1.1.1:443", 100, 200};

TEST(NettopParser, rows)
{
    struct Case {
        const char* name;
        std::string csv;
        Samples samples;
    };
    const std::string header = "time,,interface,bytes_in,bytes_out,\n";
    const std::string app = "t,app.7,,1,2,\n";
    const std::string row = "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200,\n";
    const std::string other = "t,tcp4 10.0.0.2:6<->1.1.1.1:443,en0,3,4,\n";
    const ConnectionSample second{7, "tcp4 10.0.0.2:6<->1.1.1.1:443", 3, 4};
    const Case cases[] = {
        {"empty", "", {}},
        {"only line feeds", "\n\n", {}},
        {"only a header", header, {}},
        {"one connection", header + app + row, {web}},
        {"no header", app + row, {web}},
        {"header again", header + app + row + header + other, {web, second}},
        {"no line feed at the end", header + app + row.substr(0, row.size() - 1), {web}},
        {"no comma at the end", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200", {web}},
        {"further columns", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200,9,9,9\n", {web}},
        {"blanks and tabs around fields",
         "t,\tapp.7 , ,,,\n t , tcp4 10.0.0.2:5<->1.1.1.1:443\t, en0 , 100,\t200 ,\n",
         {web}},
        {"connection before any process", header + row + app, {}},
        {"process without a number", header + "t,app,,1,2,\n" + row, {}},
        {"process with a word behind the point", header + app + "t,app.x,,1,2,\n" + row, {}},
        {"next readable process", header + "t,app,,1,2,\n" + row + app + other, {second}},
        {"short line keeps the process", app + "junk.9,,\n" + row, {web}},
        {"empty line keeps the process", app + "\n" + row, {web}},
        {"four fields are too few", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100\n", {}},
        {"four fields with a label first are too few", app + "tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200\n", {}},
        {"local network", app + "t,tcp4 10.0.0.2:5<->10.0.0.1:443,en0,100,200,\n", {}},
        {"discovery", app + "t,udp4 *:5353<->*:*,en0,100,200,\n", {}},
        {"wildcard on another port", app + "t,udp4 *:49152<->*:*,en0,1,2,\n", {{7, "udp4 *:49152<->*:*", 1, 2}}},
        {"listener without counters", app + "t,tcp4 *:5000<->*:*,en0,,,\n" + row, {web}},
        {"wildcard without an interface ends the process", app + "t,udp4 *:*<->*:*,,,,\n" + row, {}},
        {"bytes in of minus one", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,-1,200,\n", {}},
        {"bytes out of minus one", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,-1,\n", {}},
        {"bytes in empty", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,,200,\n", {}},
        {"signs that are read", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,+100,-0,\n", {{7, web.connection, 100, 0}}},
        {"leading zeros", app + "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,00100,0200,\n", {web}},
        {"counter that does not fit", app + "t,a<->b,en0,18446744073709551616,0,\n", {}},
        {"largest counter", app + "t,a<->b,en0,18446744073709551615,0,\n", {{7, "a<->b", 18446744073709551615U, 0}}},
        {"a carriage return is part of a field", app + "t,a<->b,en0,1,2\r\n", {}},
        {"same label twice", app + row + row, {web, web}},
        {"label without an arrow", app + "t,tcp4 x,en0,1,2,\n", {{7, "tcp4 x", 1, 2}}},
        {"empty label", app + "t,,en0,1,2,\n", {{7, "", 1, 2}}},
        {"zero bytes stay", app + "t,a<->b,en0,0,0,\n", {{7, "a<->b", 0, 0}}},
        {"quic labels",
         app + "t,quic4 10.0.0.2:5<->1.1.1.1:443,en0,1,2,\nt,quic6 2001:db8::1.5<->2606::2.443,en0,3,4,\n",
         {{7, "quic4 10.0.0.2:5<->1.1.1.1:443", 1, 2}, {7, "quic6 2001:db8::1.5<->2606::2.443", 3, 4}}},
        {"name cut with a trailing blank", "t,Microsoft Edge .772,,1,2,\nt,a<->b,en0,1,2,\n", {{772, "a<->b", 1, 2}}},
        {"a zero byte", app + std::string("t,a\0<->b,en0,1,2,\n", 17), {{7, std::string("a\0<->b", 6), 1, 2}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NettopParser::parse(c.csv), c.samples);
    }
}

TEST(NettopParser, interfaceFilter)
{
    const std::string csv = "t,app.7,,1,2,\nt,a<->b,en0,1,2,\nt,c<->d,en1,3,4,\n";
    const ConnectionSample first{7, "a<->b", 1, 2};
    const ConnectionSample second{7, "c<->d", 3, 4};
    EXPECT_THAT(NettopParser::parse(csv), ElementsAre(first, second));
    EXPECT_THAT(NettopParser::parse(csv, ""), ElementsAre(first, second)) << "an empty filter is no filter";
    EXPECT_THAT(NettopParser::parse(csv, "en1"), ElementsAre(second));
    EXPECT_THAT(NettopParser::parse(csv, "en"), IsEmpty()) << "the whole name counts";
    EXPECT_THAT(NettopParser::parse(csv, " en0"), IsEmpty()) << "the filter is not trimmed";
}

TEST(NettopParser, headerWithoutTime)
{
    struct Case {
        const char* name;
        std::string csv;
        Samples samples;
    };
    const std::string header = ",interface,bytes_in,bytes_out,\n";
    const std::string app = "app.7,,1,2,\n";
    const std::string row = "tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200,\n";
    const std::string timed = "time,,interface,bytes_in,bytes_out,\n";
    const std::string timedRow = "t,tcp4 10.0.0.2:5<->1.1.1.1:443,en0,100,200,\n";
    const Case cases[] = {
        {"every index one lower", header + app + row, {web}},
        {"padded", " , interface , bytes_in,bytes_out,\n app.7 , ,1,2,\n" + row, {web}},
        {"header again", header + app + row + header + row, {web, web}},
        {"without the header", app + row, {}},
        {"rows above the header", app + row + header + app + row, {web}},
        {"header with time below", header + app + row + timed + "t,app.7,,1,2,\n" + timedRow, {web, web}},
        {"header with other columns below", header + app + ",bytes_in,bytes_out,\n" + row, {}},
        {"header with the interface further right", header + app + ",state,interface,bytes_in,bytes_out,\n" + row, {}},
        {"header without time below one with time",
         timed + "t,app.7,,1,2,\n" + timedRow + header + app + row,
         {web, web}},
        {"local network", header + app + "tcp4 10.0.0.2:5<->10.0.0.1:443,en0,1,2,\n", {}},
        {"five fields stay the least", header + app + "a<->b,en0,1,2\n", {}},
        {"short line keeps the process", header + app + "junk\n" + row, {web}},
        {"listener without counters", header + app + "tcp4 *:5000<->*:*,en0,,,\n" + row, {web}},
        {"unreadable process", header + app + "app,,1,2,\n" + row, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NettopParser::parse(c.csv), c.samples);
    }
    EXPECT_THAT(NettopParser::parse(header + app + row + "c<->d,en1,3,4,\n", "en1"),
                ElementsAre(ConnectionSample{7, "c<->d", 3, 4}));
}

TEST(NettopParser, pid)
{
    struct Case {
        const char* name;
        const char* field;
        std::optional<std::int32_t> pid;
    };
    constexpr Case cases[] = {
        {"empty", "", std::nullopt},
        {"no point", "launchd", std::nullopt},
        {"nothing behind the point", "launchd.", std::nullopt},
        {"plain", "launchd.1", 1},
        {"only a point and a number", ".42", 42},
        {"points in the name", "com.apple.WebKi.13595", 13595},
        {"name made of a version", "2.1.258.60633", 60633},
        {"blanks in the name", "Google Chrome H.55911", 55911},
        {"blank before the point", "Microsoft Edge .772", 772},
        {"brackets in the name", "Code Helper (Pl.1036", 1036},
        {"ends in a word", "io.tailscale.ip", std::nullopt},
        {"digits and a letter", "app.12a", std::nullopt},
        {"blank in the number", "app.1 2", std::nullopt},
        {"plus", "app.+12", std::nullopt},
        {"minus", "app.-12", std::nullopt},
        {"leading zeros", "app.0012", 12},
        {"largest", "app.2147483647", 2'147'483'647},
        {"does not fit", "app.2147483648", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(NettopParser::pid(c.field), c.pid);
    }
}

TEST(ConnectionSample, key)
{
    EXPECT_EQ(web.key(), "7|tcp4 10.0.0.2:5<->1.1.1.1:443");
    EXPECT_EQ(ConnectionSample{}.key(), "0|");
}

} // namespace
} // namespace quellon
