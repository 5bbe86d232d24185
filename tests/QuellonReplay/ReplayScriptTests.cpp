#include "ReplayPrinter.h"
#include "ReplayScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace quellon {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
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

/// Each line stands behind a launch, which has happened by then, and before a quit, which never happens.
void expectRefusals(std::initializer_list<Refusal> cases)
{
    for (const Refusal& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string before = "# a comment\n{\"launch\": {}}\n\n";
        const auto played = play(before + c.line + "\n{\"quit\": {}}\n");
        EXPECT_EQ(played.status, replayRefused);
        EXPECT_EQ(played.out, play(before).out);
        EXPECT_THAT(played.out, HasSubstr("started"));
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
        {"two unknown verbs: the first one", R"({"zeta": 1, "alpha": 2})", "unknown verb \"zeta\""},
        {"a verb that would make two lines", R"({"a\nb": 1})", "unknown verb \"a\uFFFDb\""},
        {"a verb twice", R"({"advance": 1, "advance": 1})", "\"advance\" stands there twice"},
        {"a key twice within", R"({"process": {"pid": 5, "pid": 6}})", "\"pid\" stands there twice"},
        {"a key twice in a list", R"({"addresses": [{"name": "a", "ipv4": "b"}, {"name": "c", "name": "d"}]})",
         "\"name\" stands there twice"},
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
        {"reply of neither kind", R"({"http": {"body": "x"}})", R"(http: has either "status" or "fails")"},
        {"reply of both kinds", R"({"http": {"status": 200, "fails": true}})",
         R"(http: has either "status" or "fails")"},
        {"a body that never comes", R"({"http": {"fails": true, "body": "x"}})",
         R"(http: has either "status" or "fails")"},
        {"status that is no number", R"({"http": {"status": "200"}})",
         "http: \"status\" has a value of the wrong kind"},
        {"status that is none", R"({"http": {"status": 1000}})", "http: \"status\" is none"},
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
        {"time beyond ten years", R"({"advance": 315360001})", "advance: a script lasts ten years at most"},
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
        {"lookup of nobody", R"({"call": "requestExplanation"})", "call: \"app\" is missing"},
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
        {"answer that is no action", R"({"answer": {"action": "shout", "apps": []}})",
         "answer: \"action\" has a value of the wrong kind"},
        {"answer about nobody said", R"({"answer": {"action": "view"}})", "answer: \"apps\" is missing"},
        {"answer with more", R"({"answer": {"action": "view", "apps": [], "minutes": 5}})",
         "answer: \"minutes\" is not known"},
        {"consent that is neither yes nor no", R"({"call": "answerExplainConsent", "granted": "yes"})",
         "call: \"granted\" has a value of the wrong kind"},
        {"snapshot with more", R"({"show": "snapshot", "app": "A"})", "show: \"app\" is not known"},
        {"panel with more", R"({"show": "panel", "app": "A"})", "show: \"app\" is not known"},
        {"details of nothing", R"({"show": "detail"})", "show: \"app\" is missing"},
        {"nothing to show", R"({"show": "weather"})", "show: \"weather\" can't be shown"},
        {"file without a name", R"({"show": "file"})", "show: \"name\" is missing"},
    });
}

TEST(ReplayScript, whatNeedsARunIsRefusedWithoutOne)
{
    for (const char* line : {R"({"call": "tick"})", R"({"settings": {}})", R"({"quit": {}})",
                             R"({"signal": "SIGTERM"})", R"({"crash": {}})", R"({"show": "state"})",
                             R"({"show": "menuBar"})", R"({"show": "panel"})", R"({"show": "snapshot"})",
                             R"({"show": "detail", "app": "A"})", R"({"answer": {"action": "view", "apps": []}})"}) {
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

TEST(ReplayScript, anAnswerGoesToTheGuard)
{
    const auto played = play("{\"launch\": {\"autoStart\": false}}\n"
                             "{\"answer\": {\"action\": \"view\", \"apps\": [\"A\"]}}\n"
                             "{\"answer\": {\"action\": \"view\", \"apps\": [\"A\", \"B\"]}}\n"
                             "{\"answer\": {\"action\": \"snoozeAll\", \"apps\": [\"A\", \"B\"]}}\n");
    EXPECT_EQ(played.status, replaySucceeded) << played.errors;
    EXPECT_THAT(played.out, EndsWith("{\"t\":0,\"openSettings\":{\"tab\":\"apps\",\"detailApp\":\"A\"}}\n"
                                     "{\"t\":0,\"openSettings\":{\"tab\":\"log\"}}\n"
                                     "{\"t\":0,\"event\":{\"kind\":\"info\",\"message\":\"A snoozed for 15min\"}}\n"
                                     "{\"t\":0,\"event\":{\"kind\":\"info\",\"message\":\"B snoozed for 15min\"}}\n"));
}

TEST(ReplayScript, timeIsCountedFromTheFirstDate)
{
    struct Case {
        const char* name;
        const char* before;
        const char* moment;
    };
    constexpr Case cases[] = {
        {"no date at all", "{\"advance\": 5}\n", "5"},
        {"a clock after five seconds", "{\"advance\": 5}\n{\"clock\": \"2026-03-15T10:00:00Z\"}\n", "0"},
        {"a second clock counts on",
         "{\"clock\": \"2026-03-15T10:00:00Z\"}\n{\"advance\": 5}\n{\"clock\": \"2026-03-15T09:00:00Z\"}\n", "5"},
        {"a world has a date, its own or not",
         "{\"world\": {}}\n{\"advance\": 5}\n{\"clock\": \"2026-03-15T10:00:00Z\"}\n", "5"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto played = play(std::string{c.before} + "{\"show\": \"file\", \"name\": \"none\"}\n");
        EXPECT_EQ(played.out, std::string{"{\"t\":"} + c.moment + R"(,"file":{"name":"none","content":null}})" + "\n");
    }
}

TEST(ReplayScript, tenYearsAreTheEnd)
{
    const std::string year = "{\"advance\": 31536000}\n";
    std::string script;
    for (int i = 0; i < 10; ++i) script += year;
    EXPECT_EQ(play(script).status, replaySucceeded);
    EXPECT_EQ(play(script + "{\"advance\": 0.001}\n").errors,
              "replay: line 11: advance: a script lasts ten years at most\n");
}

/// The questions after the guard's ancestors, as far as they were asked.
TEST(ReplayScript, theGuardsAncestorsKeepTheirPlaces)
{
    struct Case {
        const char* name;
        const char* process;
        const char* last; ///< The last one that is asked about.
    };
    constexpr Case cases[] = {
        {"nothing is said of them", R"({"process": {"pid": 501}})", "700"},
        {"one is a process that anybody sees", R"({"process": {"pid": 850, "start": "A"}})", "700"},
        {"its line says another parent", R"({"process": {"pid": 850, "parent": 1}})", "850"},
        {"its line says a parent of whom nothing is known", R"({"process": {"pid": 850, "parent": 33}})", "33"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto played = play(std::string{"{\"world\": {\"parents\": [850, 700, 1]}}\n"} + c.process +
                                 "\n{\"launch\": {\"autoStart\": false}}\n");
        EXPECT_THAT(played.out, HasSubstr(R"("-p","850"])"));
        const auto asked = played.out.rfind("\"ppid=\"");
        ASSERT_NE(asked, std::string::npos);
        EXPECT_THAT(played.out.substr(asked), StartsWith(std::string{"\"ppid=\",\"-p\",\""} + c.last + "\"]"));
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
