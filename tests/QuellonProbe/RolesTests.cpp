#include "QuellonProbe/Roles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quellon {
namespace {

using ::testing::StartsWith;
using Kind = Server::Reply::Kind;

TEST(Roles, requestsThatMeanNothing)
{
    struct Case {
        const char* name;
        std::string request;
    };
    const Case cases[] = {
        {"empty", ""},
        {"unknown", "lsof"},
        {"wrong case", "Nettop"},
        {"surplus argument", "nettop eth0"},
        {"surplus blank", "nettop "},
        {"carriage return", "nettop\r"},
        {"missing argument", "ifconfig"},
        {"empty argument", "ifconfig "},
        {"two arguments", "ifconfig eth0 eth1"},
        {"path for an interface", "ifconfig ../eth0"},
        {"longer than a name can be", "netstat abcdefghijklmnop"},
        {"no process", "start"},
        {"process zero", "start 0"},
        {"negative process", "parent -1"},
        {"process beyond 32 bits", "parent 2147483648"},
        {"word for a process", "start self"},
        {"bytes of any kind", std::string{"\xff\0\n", 3}},
    };
    Roles roles;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto reply = roles.reply(c.request);
        EXPECT_EQ(reply.kind, Kind::misunderstood);
        EXPECT_EQ(reply.text, "");
    }
}

TEST(Roles, answers)
{
    const auto self = std::to_string(::getpid());
    Roles roles;
    EXPECT_THAT(roles.reply("nettop").text, StartsWith("time,,interface,bytes_in,bytes_out,\n"));
    EXPECT_EQ(roles.reply("parent " + self).text, std::to_string(::getppid()) + "\n");
    EXPECT_NE(roles.reply("start " + self).text, "");
    EXPECT_NE(roles.reply("ps").text, "");
    EXPECT_EQ(roles.reply("ifconfig nosuch0").text, "");
    EXPECT_EQ(roles.reply("netstat nosuch0").text, "");
    for (const auto* request : {"route", "networksetup", "ifconfig nosuch0", "netstat nosuch0"}) {
        EXPECT_EQ(roles.reply(request).kind, Kind::answered) << request;
    }
}

} // namespace
} // namespace quellon
