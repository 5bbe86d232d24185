#include "ReplayScript.h"

#include "QuellonCore/Support/Json.h"
#include "ReplayVerbs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace quellon {

namespace {

struct Verb {
    const char* name;
    /// Null for what this program can't do yet.
    ReplayVerbs::Action (*read)(ReplayFields& line, ReplayVerbs::Context& context);
};
constexpr std::array<Verb, 15> verbs{{
    {"world", ReplayVerbs::world},
    {"tool", ReplayVerbs::tool},
    {"addresses", ReplayVerbs::addresses},
    {"process", ReplayVerbs::process},
    {"http", nullptr},
    {"clock", ReplayVerbs::clock},
    {"launch", ReplayVerbs::launch},
    {"advance", ReplayVerbs::advance},
    {"call", ReplayVerbs::call},
    {"settings", ReplayVerbs::settings},
    {"answer", nullptr},
    {"quit", ReplayVerbs::quit},
    {"signal", ReplayVerbs::signal},
    {"crash", ReplayVerbs::crash},
    {"show", ReplayVerbs::show},
}};

const Verb& verbOf(const Json& object)
{
    const Verb* result = nullptr;
    for (const Verb& verb : verbs) {
        if (!object.contains(verb.name)) continue;
        if (result != nullptr) throw ReplayError{std::string{"two verbs: "} + result->name + " and " + verb.name};
        result = &verb;
    }
    if (result != nullptr) return *result;
    throw ReplayError{object.empty() ? std::string{"no verb"} : "unknown verb \"" + object.begin().key() + "\""};
}

ReplayVerbs::Action readLine(std::string_view text, ReplayVerbs::Context& context)
{
    const auto json = parseJson(text);
    if (!json || !json->is_object()) throw ReplayError{"not a JSON object"};
    const Verb& verb = verbOf(*json);
    if (verb.read == nullptr) throw ReplayError{std::string{verb.name} + " is not there yet"};
    ReplayFields fields{*json, verb.name};
    auto action = verb.read(fields, context);
    fields.finish();
    return action;
}

bool isSkipped(std::string_view line)
{
    return line.starts_with('#') || line.find_first_not_of(" \t\r") == std::string_view::npos;
}

[[noreturn]] void refuseLine(std::size_t number, const ReplayError& error)
{
    throw ReplayError{"line " + std::to_string(number) + ": " + error.what()};
}

} // namespace

std::vector<ReplayStep> readReplayScript(std::string_view text)
{
    std::vector<ReplayStep> steps;
    ReplayVerbs::Context context;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (isSkipped(line)) continue;
        try {
            steps.push_back({number, readLine(line, context)});
        } catch (const ReplayError& error) {
            refuseLine(number, error);
        }
        context.isFirst = false;
    }
    return steps;
}

int runReplayScript(std::string_view text, std::ostream& out, std::ostream& errors)
{
    try {
        const auto steps = readReplayScript(text);
        ReplaySession session{out};
        for (const ReplayStep& step : steps) {
            try {
                step.act(session);
            } catch (const ReplayError& error) {
                refuseLine(step.line, error);
            }
        }
    } catch (const ReplayError& error) {
        out.flush();
        errors << "replay: " << error.what() << '\n';
        return replayRefused;
    }
    return replaySucceeded;
}

} // namespace quellon
