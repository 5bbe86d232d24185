#include "QuellonProbe/NettopText.h"

#include "QuellonProbe/SocketMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using testing::endpoints;

const NettopNames names{[](std::int32_t pid) { return std::string_view{pid == 0 ? "" : "my program"}; },
                        [](std::uint32_t index) { return std::string_view{index == 3 ? "wlan0" : "?"}; }};

TEST(NettopText, nothingIsTheHeader)
{
    EXPECT_EQ(nettopText({}, "12:00:00.000000", names), "time,,interface,bytes_in,bytes_out,\n");
}

TEST(NettopText, processRowsHaveTheSumsOfTheirConnections)
{
    auto local = endpoints("fe80::1", 5, "fe80::2", 6);
    local.link = 3;
    const std::vector<ConnectionRow> rows{
        {0, endpoints("10.0.0.2", 1, "8.8.8.8", 2), 0, 7, 8},
        {42, endpoints("10.0.0.2", 50000, "93.184.216.34", 443), 3, 123, 45},
        {42, local, 3, 18446744073709551000U, 5},
    };
    EXPECT_EQ(nettopText(rows, "12:00:00.000001", names), "time,,interface,bytes_in,bytes_out,\n"
                                                          "12:00:00.000001,unknown.0,,7,8,\n"
                                                          "12:00:00.000001,tcp4 10.0.0.2:1<->8.8.8.8:2,?,7,8,\n"
                                                          "12:00:00.000001,my program.42,,18446744073709551123,50,\n"
                                                          "12:00:00.000001,tcp4 10.0.0.2:50000<->93.184.216.34:443,"
                                                          "wlan0,123,45,\n"
                                                          "12:00:00.000001,tcp6 fe80::1%wlan0.5<->fe80::2%wlan0.6,"
                                                          "wlan0,18446744073709551000,5,\n");
}

TEST(NettopText, aConnectionNeverLooksLikeAProcess)
{
    const NettopNames nameless{[](std::int32_t) { return std::string_view{}; },
                               [](std::uint32_t) { return std::string_view{}; }};
    EXPECT_EQ(nettopText({{42, endpoints("10.0.0.2", 1, "8.8.8.8", 2), 3, 7, 8}}, "t", nameless),
              "time,,interface,bytes_in,bytes_out,\n"
              "t,unknown.42,,7,8,\n"
              "t,tcp4 10.0.0.2:1<->8.8.8.8:2,?,7,8,\n");
}

TEST(NettopText, labelsOfLinksWithoutANameDiffer)
{
    auto first = endpoints("fe80::1", 5, "fe80::2", 6);
    auto second = first;
    first.link = 8;
    second.link = 9;
    EXPECT_EQ(nettopText({{42, first, 8, 1, 2}, {42, second, 9, 3, 4}}, "t", names),
              "time,,interface,bytes_in,bytes_out,\n"
              "t,my program.42,,4,6,\n"
              "t,tcp6 fe80::1%8.5<->fe80::2%8.6,?,1,2,\n"
              "t,tcp6 fe80::1%9.5<->fe80::2%9.6,?,3,4,\n");
}

TEST(NettopText, timeOfDayHasItsForm)
{
    EXPECT_THAT(timeOfDay(), ::testing::MatchesRegex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{6}"));
}

} // namespace
} // namespace quellon
