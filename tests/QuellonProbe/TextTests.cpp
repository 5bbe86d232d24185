#include "QuellonProbe/Text.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;

constexpr auto replacement = "\xEF\xBF\xBD"sv;

TEST(Text, cleanName)
{
    struct Case {
        const char* name;
        std::string_view raw;
        std::string clean;
        Commas commas = Commas::kept;
    };
    const auto r = std::string{replacement};
    const Case cases[] = {
        {"empty", ""sv, ""},
        {"plain", "firefox"sv, "firefox"},
        {"blanks, brackets and points stay", "a b) (c.d"sv, "a b) (c.d"},
        {"line feed", "a\nb"sv, "a?b"},
        {"tab and carriage return", "a\tb\r"sv, "a?b?"},
        {"zero byte", "a\0b"sv, "a?b"},
        {"escape", "\x1B[2J"sv, "?[2J"},
        {"DEL", "a\x7F"sv, "a?"},
        {"C1 control U+0085", "a\xC2\x85z"sv, "a?z"},
        {"first after the C1 controls", "\xC2\xA0"sv, "\xC2\xA0"},
        {"two, three and four bytes", "ü€😀"sv, "ü€😀"},
        {"last code point", "\xF4\x8F\xBF\xBF"sv, "\xF4\x8F\xBF\xBF"},
        {"beyond the last code point", "\xF4\x90\x80\x80"sv, r + r + r + r},
        {"Latin-1 letter", "caf\xE9"sv, "caf" + r},
        {"byte that no sequence begins with", "\xFF"sv, r},
        {"continuation alone", "a\x80z"sv, "a" + r + "z"},
        {"over-long slash", "\xC0\xAF"sv, r + r},
        {"over-long of three bytes", "\xE0\x80\xAF"sv, r + r + r},
        {"surrogate", "\xED\xA0\x80"sv, r + r + r},
        {"cut at the end", "a\xE2\x82"sv, "a" + r},
        {"broken by a letter, which stays", "\xE2\x82z"sv, r + "z"},
        {"broken by a line feed, which is still seen", "\xE2\x82\n"sv, r + "?"},
        {"comma kept", "a,b"sv, "a,b"},
        {"comma replaced", "a,b,"sv, "a;b;", Commas::replaced},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(cleanName(c.raw, c.commas), c.clean);
    }
}

TEST(Text, addressText)
{
    EXPECT_EQ(addressText("\x01\x02\x03\xFF"sv), "1.2.3.255");
    EXPECT_EQ(addressText("\x26\x06\x47\0\0\0\0\0\0\0\0\0\0\0\x11\x11"sv), "2606:4700::1111");
    EXPECT_EQ(addressText(""sv), "");
    EXPECT_EQ(addressText("\x01\x02\x03"sv), "");
}

TEST(Text, complainDoesNotWaitForAReader)
{
    std::array<int, 2> ends{-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
    const std::string filling(65'536, 'x');
    while (write(ends[1], filling.data(), filling.size()) > 0) {}
    ASSERT_EQ(fcntl(ends[1], F_SETFL, 0), 0);
    const int kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    ASSERT_EQ(dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    auto said = std::async(std::launch::async, [] { complain("nobody reads this"); });
    const auto status = said.wait_for(std::chrono::seconds{10});
    dup2(kept, STDERR_FILENO);
    // Whoever waits for room gets it now.
    std::string drain(1'048'576, ' ');
    EXPECT_GT(read(ends[0], drain.data(), drain.size()), 0);
    EXPECT_EQ(status, std::future_status::ready);
    for (const int descriptor : {ends[0], ends[1], kept}) close(descriptor);
}

} // namespace
} // namespace quellon
