#include "QuellonCore/UpdateCheck/UpdateCheckPolicy.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

constexpr Date now{Seconds{800'000'000.0}};
using Kind = UpdateCheckOutcome::Kind;

TEST(UpdateCheckPolicy, shouldCheck)
{
    struct Case {
        const char* name;
        UpdateCheckConsent consent;
        std::optional<Seconds> since;
        bool shouldCheck;
    };
    const Case cases[] = {
        {"never asked", UpdateCheckConsent::unasked, {}, false},
        {"never asked, long ago", UpdateCheckConsent::unasked, Seconds{1e9}, false},
        {"declined", UpdateCheckConsent::denied, {}, false},
        {"first check", UpdateCheckConsent::granted, {}, true},
        {"a second short of a day", UpdateCheckConsent::granted, Seconds{86'399.0}, false},
        {"a day", UpdateCheckConsent::granted, Seconds{86'400.0}, true},
        {"just now", UpdateCheckConsent::granted, Seconds{0.0}, false},
        {"a second in the future", UpdateCheckConsent::granted, Seconds{-1.0}, true},
        {"declined, and in the future", UpdateCheckConsent::denied, Seconds{-1.0}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto last = c.since ? std::optional{now - *c.since} : std::nullopt;
        EXPECT_EQ(UpdateCheckPolicy::shouldCheck(c.consent, last, now), c.shouldCheck);
    }
}

TEST(UpdateCheckPolicy, outcome)
{
    struct Case {
        const char* name;
        const char* current;
        UpdateManifest manifest;
        std::optional<std::string> system;
        Kind kind;
    };
    const std::string url = "https://quellon.example/download";
    const Case cases[] = {
        {"newer", "1.2.0", {"1.3", url, {}, {}}, "14.5.0", Kind::updateAvailable},
        {"the same in another form", "1.2", {"1.2.0.0", url, {}, {}}, "14.5.0", Kind::upToDate},
        {"older", "1.10", {"1.9", url, {}, {}}, "14.5.0", Kind::upToDate},
        {"own version unreadable", "dev", {"9", url, {}, {}}, "14.5.0", Kind::upToDate},
        {"own version unreadable before all else", "dev", {"new", "ftp", {}, {}}, "14.5.0", Kind::upToDate},
        {"latest version unreadable", "1.2.0", {"new", url, {}, {}}, "14.5.0", Kind::manifestUnreadable},
        {"address without encryption",
         "1.2.0",
         {"1.3", "http://quellon.example/", {}, {}},
         {},
         Kind::manifestUnreadable},
        {"... also for an older version",
         "1.2.0",
         {"1.1", "http://quellon.example/", {}, {}},
         {},
         Kind::manifestUnreadable},
        {"scheme in capitals", "1.2.0", {"1.3", "HTTPS://quellon.example/", {}, {}}, {}, Kind::updateAvailable},
        {"address without a host", "1.2.0", {"1.3", "https:///download", {}, {}}, {}, Kind::manifestUnreadable},
        {"address that is none", "1.2.0", {"1.3", "quellon.example", {}, {}}, {}, Kind::manifestUnreadable},
        {"address of a program", "1.2.0", {"1.3", "javascript:alert(1)", {}, {}}, {}, Kind::manifestUnreadable},
        {"empty address", "1.2.0", {"1.3", "", {}, {}}, {}, Kind::manifestUnreadable},
        {"system too old", "1.2.0", {"1.3", url, {}, "15.0"}, "14.5.0", Kind::upToDate},
        {"system just new enough", "1.2.0", {"1.3", url, {}, "14.5"}, "14.5.0", Kind::updateAvailable},
        {"system unknown", "1.2.0", {"1.3", url, {}, "15.0"}, {}, Kind::updateAvailable},
        {"system unreadable", "1.2.0", {"1.3", url, {}, "15.0"}, "6.1.0-amd64", Kind::updateAvailable},
        {"minimum unreadable", "1.2.0", {"1.3", url, {}, "soon"}, "14.5.0", Kind::updateAvailable},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto outcome = UpdateCheckPolicy::outcome(c.current, c.manifest, c.system);
        EXPECT_EQ(outcome.kind, c.kind);
        const bool isAvailable = c.kind == Kind::updateAvailable;
        EXPECT_EQ(outcome.version, isAvailable ? c.manifest.latestVersion : "");
        EXPECT_EQ(outcome.downloadURL, isAvailable ? c.manifest.downloadURL : "");
    }
}

TEST(UpdateCheckPolicy, theTextsOfAnUpdateAreTheManifests)
{
    const auto outcome = UpdateCheckPolicy::outcome("1", {" 01.3\n", "HTTPS://Quellon.example/x?y#z", {}, {}}, {});
    EXPECT_EQ(outcome.version, " 01.3\n");
    EXPECT_EQ(outcome.downloadURL, "HTTPS://Quellon.example/x?y#z");
}

} // namespace
} // namespace quellon
