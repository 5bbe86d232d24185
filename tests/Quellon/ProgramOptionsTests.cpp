#include "Quellon/ProgramOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quellon {
namespace {

using View = ProgramOptions::View;
using testing::HasSubstr;

TEST(CommandLine, rightOnes)
{
    struct Case {
        const char* name;
        std::vector<std::string_view> arguments;
        ProgramOptions options;
    };
    const Case cases[] = {
        {"nothing", {}, {}},
        {"terminal", {"--terminal"}, {.view = View::terminal, .duration = {}}},
        {"plain", {"--plain"}, {.view = View::plain, .duration = {}}},
        {"the same twice", {"--plain", "--plain"}, {.view = View::plain, .duration = {}}},
        {"duration", {"--duration", "5"}, {.duration = Seconds{5}}},
        {"duration in one word", {"--duration=2.5"}, {.duration = Seconds{2.5}}},
        {"the last duration holds", {"--duration", "5", "--duration", "7"}, {.duration = Seconds{7}}},
        {"both", {"--terminal", "--duration", "60"}, {.view = View::terminal, .duration = Seconds{60}}},
        {"the shortest freeze", {"--auto-resume", "1"}, {.duration = {}, .autoResumeSeconds = 1}},
        {"the longest freeze", {"--auto-resume=1800"}, {.duration = {}, .autoResumeSeconds = 1800}},
        {"the last freeze holds",
         {"--auto-resume", "5", "--auto-resume=007"},
         {.duration = {}, .autoResumeSeconds = 7}},
        {"autostart on", {"--autostart", "on"}, {.duration = {}, .autostart = AutostartCommand::on}},
        {"autostart off", {"--autostart=off"}, {.duration = {}, .autostart = AutostartCommand::off}},
        {"autostart status", {"--autostart", "status"}, {.duration = {}, .autostart = AutostartCommand::status}},
        {"snapshot", {"--snapshot"}, {.duration = {}, .snapshot = true}},
        {"redact", {"--redact", "x.json"}, {.duration = {}, .redact = "x.json"}},
        {"redact in one word", {"--redact=a=b"}, {.duration = {}, .redact = "a=b"}},
        {"redact standard input", {"--redact", "-"}, {.duration = {}, .redact = "-"}},
        {"redact a file with an option's name", {"--redact", "--snapshot"}, {.duration = {}, .redact = "--snapshot"}},
        {"the last file holds", {"--redact=1", "--redact=2"}, {.duration = {}, .redact = "2"}},
        {"help", {"--help"}, {.duration = {}, .help = true}},
        {"help in short", {"-h"}, {.duration = {}, .help = true}},
        {"version", {"--version"}, {.duration = {}, .version = true}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CommandLine::parse(c.arguments), (CommandLine::Result{c.options, std::nullopt}));
    }
}

TEST(CommandLine, wrongOnes)
{
    struct Case {
        const char* name;
        std::vector<std::string_view> arguments;
        const char* error;
    };
    constexpr const char* value = "--duration takes a positive number of seconds, such as 5 or 2.5";
    constexpr const char* freeze = "--auto-resume takes a whole number of seconds, 1 to 1800";
    const Case cases[] = {
        {"unknown option", {"--fast"}, "unknown option \"--fast\""},
        {"unknown short option", {"-x"}, "unknown option \"-x\""},
        {"a lone dash", {"-"}, "unknown option \"-\""},
        {"two dashes", {"--"}, "unknown option \"--\""},
        {"a longer word", {"--durations=5"}, "unknown option \"--durations=5\""},
        {"a value where none belongs", {"--plain=1"}, "unknown option \"--plain=1\""},
        {"a stray argument", {"--plain", "hotspot"}, "unexpected argument \"hotspot\""},
        {"an empty argument", {""}, "unexpected argument \"\""},
        {"no value", {"--duration"}, value},
        {"an option for a value", {"--duration", "--plain"}, value},
        {"an empty value", {"--duration="}, value},
        {"zero", {"--duration", "0"}, value},
        {"no length of a freeze", {"--auto-resume"}, freeze},
        {"an option for it", {"--auto-resume", "--plain"}, freeze},
        {"an empty one", {"--auto-resume="}, freeze},
        {"no freeze at all", {"--auto-resume", "0"}, freeze},
        {"a negative one", {"--auto-resume", "-1"}, freeze},
        {"a signed one", {"--auto-resume", "+5"}, freeze},
        {"too long a freeze", {"--auto-resume", "1801"}, freeze},
        {"longer than any number", {"--auto-resume", "99999999999999999999"}, freeze},
        {"a fraction", {"--auto-resume", "2.5"}, freeze},
        {"with a unit", {"--auto-resume", "5s"}, freeze},
        {"a longer word for it", {"--auto-resumes=5"}, "unknown option \"--auto-resumes=5\""},
        {"no word for the autostart", {"--autostart"}, "--autostart takes on, off or status"},
        {"another word for it", {"--autostart", "yes"}, "--autostart takes on, off or status, not \"yes\""},
        {"no file", {"--redact"}, "--redact takes a file, or - for standard input"},
        {"an empty file", {"--redact", ""}, "--redact takes a file, or - for standard input"},
        {"a value for the snapshot", {"--snapshot=x"}, "unknown option \"--snapshot=x\""},
        {"both texts", {"--snapshot", "--redact", "x"}, "--snapshot and --redact exclude each other"},
        {"both texts, turned round", {"--redact", "x", "--snapshot"}, "--snapshot and --redact exclude each other"},
        {"both views", {"--plain", "--terminal"}, "--terminal and --plain exclude each other"},
        {"help does not hide a mistake", {"--help", "--fast"}, "unknown option \"--fast\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto result = CommandLine::parse(c.arguments);
        ASSERT_TRUE(result.error);
        EXPECT_THAT(*result.error, testing::StartsWith(c.error));
    }
}

TEST(CommandLine, parseDuration)
{
    struct Case {
        const char* name;
        std::string text;
        std::optional<double> seconds;
    };
    const Case cases[] = {
        {"whole", "5", 5.0},
        {"with a fraction", "2.5", 2.5},
        {"leading zeros", "007", 7.0},
        {"a small one", "0.001", 0.001},
        {"the most", "1000000000", 1e9},
        {"more than the most", "1000000001", std::nullopt},
        {"as long as a novel", std::string(5000, '9'), std::nullopt},
        {"zero", "0", std::nullopt},
        {"zero with a fraction", "0.000", std::nullopt},
        {"negative", "-1", std::nullopt},
        {"signed", "+1", std::nullopt},
        {"empty", "", std::nullopt},
        {"no digit before the point", ".5", std::nullopt},
        {"no digit behind it", "5.", std::nullopt},
        {"two points", "1.2.3", std::nullopt},
        {"comma", "1,5", std::nullopt},
        {"exponent", "1e3", std::nullopt},
        {"hexadecimal", "0x10", std::nullopt},
        {"not a number", "nan", std::nullopt},
        {"infinite", "inf", std::nullopt},
        {"with a unit", "5s", std::nullopt},
        {"blanks", " 5", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto duration = CommandLine::parseDuration(c.text);
        ASSERT_EQ(duration.has_value(), c.seconds.has_value());
        EXPECT_NEAR(duration.value_or(Seconds{0}).count(), c.seconds.value_or(0), 1e-9);
    }
}

TEST(CommandLine, helpNamesEveryOption)
{
    for (const char* option : {"--terminal", "--plain", "--duration", "--auto-resume", "--snapshot", "--redact",
                               "--help", "--version", "Exit status"}) {
        EXPECT_THAT(std::string{CommandLine::help()}, HasSubstr(option));
    }
}

TEST(ProgramOptions, chooseView)
{
    struct Case {
        const char* name;
        View asked;
        Surroundings surroundings;
        ChosenView chosen;
    };
    constexpr Case cases[] = {
        {"a display", View::automatic, {true, true}, ChosenView::desktop},
        {"a display and no terminal", View::automatic, {true, false}, ChosenView::desktop},
        {"no display", View::automatic, {false, true}, ChosenView::terminal},
        {"neither", View::automatic, {false, false}, ChosenView::plain},
        {"terminal in spite of a display", View::terminal, {true, true}, ChosenView::terminal},
        {"terminal into a pipe", View::terminal, {true, false}, ChosenView::plain},
        {"plain in spite of everything", View::plain, {true, true}, ChosenView::plain},
        {"plain into a pipe", View::plain, {false, false}, ChosenView::plain},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(chooseView(c.asked, c.surroundings), c.chosen);
    }
}

} // namespace
} // namespace quellon
