#include "QuellonHost/Posix/TimeZone.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace quellon {
namespace {

TEST(TimeZone, name)
{
    struct Case {
        const char* name;
        std::optional<std::string> variable;
        const char* link;
        const char* zone;
    };
    const Case cases[] = {
        {"a name", "Europe/Berlin", "", "Europe/Berlin"},
        {"a name with a colon", ":Asia/Tokyo", "", "Asia/Tokyo"},
        {"a file", "/usr/share/zoneinfo/America/New_York", "", "America/New_York"},
        {"a file with a colon", ":/usr/share/zoneinfo/Asia/Tokyo", "", "Asia/Tokyo"},
        {"the variable wins", "Asia/Tokyo", "/usr/share/zoneinfo/Europe/Berlin", "Asia/Tokyo"},
        {"an empty variable is UTC", "", "/usr/share/zoneinfo/Europe/Berlin", "UTC"},
        {"a file elsewhere", "/home/me/zone", "", "UTC"},
        {"a rule stays what it is", "CET-1CEST", "", "CET-1CEST"},
        {"the link", std::nullopt, "/usr/share/zoneinfo/Europe/Berlin", "Europe/Berlin"},
        {"a relative link", std::nullopt, "../usr/share/zoneinfo/Etc/UTC", "Etc/UTC"},
        {"the link of macOS", std::nullopt, "/var/db/timezone/zoneinfo/Europe/Paris", "Europe/Paris"},
        {"a variant of the database", std::nullopt, "/usr/share/zoneinfo/posix/Asia/Tokyo", "Asia/Tokyo"},
        {"no link", std::nullopt, "", "UTC"},
        {"a link elsewhere", std::nullopt, "/etc/zone", "UTC"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(TimeZone::name(c.variable, c.link), c.zone);
    }
}

} // namespace
} // namespace quellon
