// The traffic sample as real machines printed it.

#include "QuellonCore/Measurement/NettopParser.h"
#include "QuellonCore/Support/Text.h"
#include "ToolCaptures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

namespace quellon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Samples = std::vector<ConnectionSample>;

std::vector<std::string> fieldsOf(std::string_view line)
{
    std::vector<std::string> fields;
    for (bool more = true; more;) {
        more = line.find(',') != std::string_view::npos;
        fields.emplace_back(takeUntil(line, ','));
    }
    return fields;
}

/// A capture of more columns, cut down to `columns` as the tool itself does when it is asked for fewer.
std::string onlyColumns(std::string_view capture, const std::vector<std::string>& columns)
{
    std::string result;
    std::string_view rest = capture;
    std::vector<std::size_t> kept;
    while (!rest.empty()) {
        const auto fields = fieldsOf(takeLine(rest));
        if (kept.empty()) {
            for (const auto& column : columns) {
                const auto found = std::ranges::find(fields, column);
                EXPECT_NE(found, fields.end()) << column;
                kept.push_back(static_cast<std::size_t>(found - fields.begin()));
            }
        }
        for (const std::size_t index : kept) result += fields.at(index) + ',';
        result += '\n';
    }
    return result;
}

const std::vector<std::string> asked{"time", "", "interface", "bytes_in", "bytes_out"};
const std::vector<std::string> askedWithoutTime{"", "interface", "bytes_in", "bytes_out"};

std::size_t countProtocol(const Samples& samples, std::string_view protocol)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(samples, [&](const auto& each) { return each.connection.starts_with(protocol); }));
}

TEST(NettopCaptures, otherColumnsGiveNothing)
{
    for (const char* name : {
             "001-netglass-time-J-numeric", // a state column stands where the counter is expected
             "003-netscope-full-columns",
             "005-nettool-P-J-bytes", // no interface column
             "007-two-blocks-P-x-L2",
             "009-k-state-interface",
             "011-padded-csv-with-connections",
             "014-padded-csv-per-process",
             "015-netmeter-human-units-l", // not comma-separated
             "017-warp-tcp4-tcp6-utun4",   // connections without their process
             "019-appband-many-processes",
             "021-chrome-helpers",
         }) {
        SCOPED_TRACE(name);
        const std::string text = toolCapture(std::string{"nettop/"} + name + ".txt");
        ASSERT_FALSE(text.empty());
        EXPECT_THAT(NettopParser::parse(text), IsEmpty());
    }
}

TEST(NettopCaptures, wholeMachine)
{
    const std::string text = onlyColumns(toolCapture("nettop/001-netglass-time-J-numeric.txt"), asked);
    const Samples samples = NettopParser::parse(text);
    ASSERT_EQ(samples.size(), 145U);
    EXPECT_EQ(samples.front(), (ConnectionSample{590, "tcp4 198.18.0.1:65358<->17.57.146.138:5223", 7046, 34544}));
    EXPECT_EQ(samples[1], (ConnectionSample{685, "tcp4 198.18.0.1:65364<->17.248.214.67:443", 0, 1771}));
    EXPECT_EQ(samples.back(), (ConnectionSample{86527, "quic4 198.18.0.1:52595<->17.253.39.143:443", 13316, 6254}));
    EXPECT_EQ(countProtocol(samples, "tcp4 "), 95U);
    EXPECT_EQ(countProtocol(samples, "quic4 "), 47U);
    EXPECT_EQ(countProtocol(samples, "udp4 "), 3U) << "wildcards outside the discovery ports";
    EXPECT_EQ(countProtocol(samples, "quic6 "), 0U) << "its peer is link-local";
    EXPECT_THAT(samples, Contains(ConnectionSample{41723, "udp4 *:57683<->*:*", 6723, 5782}));

    std::set<std::int32_t> owners;
    std::uint64_t bytesIn = 0;
    std::uint64_t bytesOut = 0;
    for (const auto& each : samples) {
        owners.insert(each.pid);
        bytesIn += each.bytesIn;
        bytesOut += each.bytesOut;
    }
    EXPECT_EQ(owners.size(), 15U);
    EXPECT_EQ(bytesIn, 178'748'960U);
    EXPECT_EQ(bytesOut, 217'627'478U);
}

TEST(NettopCaptures, wholeMachineByInterface)
{
    const std::string text = onlyColumns(toolCapture("nettop/001-netglass-time-J-numeric.txt"), asked);
    EXPECT_EQ(NettopParser::parse(text, "en0").size(), 104U);
    EXPECT_EQ(NettopParser::parse(text, "utun8").size(), 38U);
    EXPECT_THAT(NettopParser::parse(text, "en1"), IsEmpty());
}

TEST(NettopCaptures, timeColumnLeftOut)
{
    for (const char* name : {"nettop/001-netglass-time-J-numeric.txt", "nettop/003-netscope-full-columns.txt"}) {
        SCOPED_TRACE(name);
        const std::string capture = toolCapture(name);
        const Samples samples = NettopParser::parse(onlyColumns(capture, asked));
        EXPECT_FALSE(samples.empty());
        EXPECT_EQ(NettopParser::parse(onlyColumns(capture, askedWithoutTime)), samples);
    }
}

TEST(NettopCaptures, cutNameWithTrailingBlank)
{
    const std::string text = onlyColumns(toolCapture("nettop/003-netscope-full-columns.txt"), asked);
    EXPECT_THAT(NettopParser::parse(text),
                ElementsAre(ConnectionSample{284, "udp4 192.168.3.37:62457<->*:*", 32'286'682, 19'508'471},
                            ConnectionSample{772, "udp4 192.168.3.37:9993<->8.8.8.8:53", 17'411'503, 19'446'381},
                            ConnectionSample{772, "tcp4 192.168.3.37:56241<->17.57.145.55:5223", 27'201, 31'090}));
}

TEST(NettopCaptures, everyProcessNameGivesItsNumber)
{
    struct Case {
        const char* name;
        std::size_t headers;
        std::size_t processes;
        std::int32_t last;
    };
    constexpr Case cases[] = {
        {"005-nettool-P-J-bytes", 1, 5, 555},
        {"007-two-blocks-P-x-L2", 2, 31, 19249},
        {"019-appband-many-processes", 1, 80, 73743},
        {"021-chrome-helpers", 1, 8, 50838},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string text = toolCapture(std::string{"nettop/"} + c.name + ".txt");
        std::string_view rest = text;
        std::vector<std::int32_t> processes;
        std::size_t others = 0;
        while (!rest.empty()) {
            std::string_view line = takeLine(rest);
            if (const auto pid = NettopParser::pid(takeUntil(line, ','))) {
                processes.push_back(*pid);
            } else {
                ++others;
            }
        }
        ASSERT_EQ(processes.size(), c.processes);
        EXPECT_EQ(processes.back(), c.last);
        EXPECT_EQ(others, c.headers);
    }
}

} // namespace
} // namespace quellon
