#include "ReplayScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace quellon {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct Played {
    int status = 0;
    std::string out;
    std::string errors;
};

Played play(const std::string& script)
{
    std::ostringstream out;
    std::ostringstream errors;
    const int status = runReplayScript(script, out, errors);
    return {status, out.str(), errors.str()};
}

struct Refusal {
    const char* name;
    const char* line;
    const char* why;
};

/// Each line stands behind a launch: had anything been run, there would be output.
void expectRefusals(std::initializer_list<Refusal> cases)
{
    for (const Refusal& c : cases) {
        SCOPED_TRACE(c.name);
        const auto played = play(std::string{"# a comment\n{\"launch\": {}}\n\n"} + c.line + "\n");
        EXPECT_EQ(played.status, replayRefused);
        EXPECT_THAT(played.out, IsEmpty());
        EXPECT_EQ(played.errors, std::string{"replay: line 4: "} + c.why + "\n");
    }
}

TEST(ReplayScript, linesThatAreNone)
{
    expectRefusals({
        {"no JSON", "advance 5", "not a JSON object"},
        {"a list", "[1]", "not a JSON object"},
        {"not UTF-8", "{\"advance\": \"\xff\"}", "not a JSON object"},
        {"no verb", "{}", "no verb"},
        {"unknown verb", R"({"wait": 1})", "unknown verb \"wait\""},
        {"two verbs", R"({"advance": 1, "crash": {}})", "two verbs: advance and crash"},
        {"unknown key beside the verb", R"({"advance": 1, "slowly": true})", "advance: \"slowly\" is not known"},
        {"two values", R"({"advance": 1} {"advance": 1})", "not a JSON object"},
    });
}

TEST(ReplayScript, wordsOfTheWorldThatAreRefused)
{
    expectRefusals({
        {"world after another line", R"({"world": {}})", "world: comes first or not at all"},
        {"tool without a name", R"({"tool": {"text": ""}})", "tool: \"name\" is missing"},
        {"unknown tool", R"({"tool": {"name": "lsof", "text": ""}})", "tool: no tool has the name \"lsof\""},
        {"tool that says nothing", R"({"tool": {"name": "ps", "takes": 1}})",
         R"(tool: has exactly one of "text", "fails" and "timesOut")"},
        {"tool that says two things", R"({"tool": {"name": "ps", "text": "", "fails": true}})",
         R"(tool: has exactly one of "text", "fails" and "timesOut")"},
        {"tool that takes negative time", R"({"tool": {"name": "ps", "text": "", "takes": -1}})",
         "tool: \"takes\" is no number of seconds from 0 to a hundred years"},
        {"text of another kind", R"({"tool": {"name": "ps", "text": 5}})",
         "tool: \"text\" has a value of the wrong kind"},
        {"null is no text", R"({"tool": {"name": "ps", "text": null}})",
         "tool: \"text\" has a value of the wrong kind"},
        {"unknown key of a tool", R"({"tool": {"name": "ps", "text": "", "after": 1}})",
         "tool: \"after\" is not known"},
        {"addresses that are no list", R"({"addresses": {}})", "addresses: not a list"},
        {"address without a name", R"({"addresses": [{"ipv4": "10.0.0.1"}]})", "addresses: \"name\" is missing"},
        {"process without an id", R"({"process": {"start": "A"}})", "process: \"pid\" is missing"},
        {"process 0", R"({"process": {"pid": 0}})", "process: a process id is above 0"},
        {"process id with a fraction", R"({"process": {"pid": 1.5}})",
         "process: \"pid\" has a value of the wrong kind"},
        {"clock without a zone", R"({"clock": "2026-03-15T10:00:00"})",
         "clock: \"clock\" is no date like 2026-03-15T10:00:00Z"},
        {"http", R"({"http": {"status": 200}})", "http is not there yet"},
    });
}

TEST(ReplayScript, worldsThatAreRefused)
{
    constexpr Refusal cases[] = {
        {"no object", R"({"world": 1})", "world: not an object"},
        {"no date", R"({"world": {"date": "yesterday"}})", "world: \"date\" is no date like 2026-03-15T10:00:00Z"},
        {"no zone", R"({"world": {"timezone": "Middle/Earth"}})",
         "world: \"timezone\" names no time zone of this system's list"},
        {"no platform", R"({"world": {"platform": "linux"}})", "world: \"platform\" is neither macOS nor Linux"},
        {"no process id", R"({"world": {"pid": -1}})", "world: a process id is above 0"},
        {"a path for a file", R"({"world": {"files": {"../x": ""}}})", "world: \"../x\" is no file name"},
        {"unknown key", R"({"world": {"weather": "fine"}})", "world: \"weather\" is not known"},
        {"unknown capability", R"({"world": {"notifications": {"loud": true}}})",
         "notifications: \"loud\" is not known"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto played = play(c.line);
        EXPECT_EQ(played.status, replayRefused);
        EXPECT_EQ(played.errors, std::string{"replay: line 1: "} + c.why + "\n");
    }
}

TEST(ReplayScript, actsThatAreRefused)
{
    expectRefusals({
        {"second launch", R"({"launch": {}})", "launch: the guard is running already"},
        {"unknown edition", R"({"launch": {"edition": "lite"}})", "launch: \"edition\" has a value of the wrong kind"},
        {"time that goes back", R"({"advance": -1})",
         "advance: \"advance\" is no number of seconds from 0 to a hundred years"},
        {"time without end", R"({"advance": 1e300})",
         "advance: \"advance\" is no number of seconds from 0 to a hundred years"},
        {"unknown operation", R"({"call": "explode"})", "call: the guard has no operation \"explode\""},
        {"operation without its argument", R"({"call": "snooze"})", "call: \"app\" is missing"},
        {"argument of another kind", R"({"call": "snooze", "app": "A", "minutes": "5"})",
         "call: \"minutes\" has a value of the wrong kind"},
        {"argument of another operation", R"({"call": "stop", "app": "A"})", "call: \"app\" is not known"},
        {"unknown action", R"({"call": "enforceNow", "apps": [], "action": "hit"})",
         "call: \"action\" has a value of the wrong kind"},
        {"neither id nor name", R"({"call": "selectProfile"})", R"(call: has either "id" or "name")"},
        {"id and name", R"({"call": "deleteProfile", "id": "00000000-0000-4000-8000-000000000001", "name": "A"})",
         R"(call: has either "id" or "name")"},
        {"operation of later", R"({"call": "requestExplanation", "app": "A"})",
         "call requestExplanation is not there yet"},
        {"unknown setting", R"({"settings": {"colour": "red"}})",
         "settings: \"colour\" is no key of the settings' file"},
        {"setting of another kind", R"({"settings": {"notify": 1}})",
         "settings: \"notify\" has a value that the file could not hold"},
        {"plan that no number holds", R"({"settings": {"planGB": -1}})",
         "settings: \"planGB\" has a value that the file could not hold"},
        {"no plan", R"({"settings": {"profiles": []}})",
         "settings: \"profiles\" has a value that the file could not hold"},
        {"signal that can't be caught", R"({"signal": "SIGKILL"})",
         "signal: neither SIGTERM nor SIGINT; what can't be caught is a crash"},
        {"quit with arguments", R"({"quit": {"now": true}})", "quit: \"now\" is not known"},
        {"answer", R"({"answer": {"action": "suspend", "apps": ["A"]}})", "answer is not there yet"},
        {"panel", R"({"show": "panel"})", "show panel is not there yet"},
        {"nothing to show", R"({"show": "weather"})", "show: \"weather\" can't be shown"},
        {"file without a name", R"({"show": "file"})", "show: \"name\" is missing"},
    });
}

TEST(ReplayScript, whatNeedsARunIsRefusedWithoutOne)
{
    for (const char* line :
         {R"({"call": "tick"})", R"({"settings": {}})", R"({"quit": {}})", R"({"signal": "SIGTERM"})",
          R"({"crash": {}})", R"({"show": "state"})", R"({"show": "menuBar"})"}) {
        SCOPED_TRACE(line);
        EXPECT_EQ(play(line).errors, "replay: line 1: no guard is running: a launch comes first\n");
        EXPECT_THAT(play(std::string{"{\"launch\": {}}\n{\"crash\": {}}\n"} + line).errors,
                    StartsWith("replay: line 3: no guard is running"));
        const auto after = play(std::string{"{\"launch\": {\"autoStart\": false}}\n"} + line);
        EXPECT_EQ(after.status, replaySucceeded) << after.errors;
    }
}

TEST(ReplayScript, whatOnlyTheRunCanTellEndsItThere)
{
    constexpr Refusal cases[] = {
        {"a plan that is not there", R"({"call": "selectProfile", "name": "Ours"})", "no plan has the name \"Ours\""},
        {"an application that is not paused", R"({"call": "resume", "app": "A"})", "\"A\" is not paused"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto played = play(std::string{"{\"launch\": {}}\n"} + c.line + "\n{\"quit\": {}}\n");
        EXPECT_EQ(played.status, replayRefused);
        EXPECT_THAT(played.out, HasSubstr("started"));
        EXPECT_THAT(played.out, ::testing::Not(HasSubstr("exit")));
        EXPECT_EQ(played.errors, std::string{"replay: line 2: "} + c.why + "\n");
    }
}

TEST(ReplayScript, skipsEmptyLinesAndComments)
{
    const auto played =
        play("# one\r\n\r\n   \n\t\n#{\"nonsense\"\n{\"launch\": {\"autoStart\": false}}\r\n{\"quit\": {}}");
    EXPECT_EQ(played.status, replaySucceeded) << played.errors;
    EXPECT_THAT(played.out, HasSubstr(R"({"t":0,"exit":0})"));
    EXPECT_EQ(play("").status, replaySucceeded);
}

TEST(ReplayPrinter, momentIsRoundedToMilliseconds)
{
    struct Case {
        const char* name;
        double elapsed;
        const char* text;
    };
    constexpr Case cases[] = {
        {"the beginning", 0.0, "0"},
        {"a whole second", 5.0, "5"},
        {"a tenth", 0.1, "0.1"},
        {"below half a millisecond", 0.0004, "0"},
        {"half a millisecond", 0.0005, "0.001"},
        {"up to a second", 0.9996, "1"},
        {"three figures", 12.345, "12.345"},
        {"a month", 2'592'000.5, "2592000.5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ReplayPrinter::moment(Seconds{c.elapsed}).dump(), c.text);
    }
}

} // namespace
} // namespace quellon
