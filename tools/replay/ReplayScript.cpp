#include "ReplayScript.h"

#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonCore/Support/Json.h"
#include "ReplaySession.h"
#include "ReplayVerbs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quellon {

namespace {

struct Verb {
    const char* name;
    ReplayVerbs::Action (*read)(ReplayFields& line, ReplayVerbs::Context& context);
};
constexpr std::array<Verb, 15> verbs{{
    {"world", ReplayVerbs::world},
    {"tool", ReplayVerbs::tool},
    {"addresses", ReplayVerbs::addresses},
    {"process", ReplayVerbs::process},
    {"http", ReplayVerbs::http},
    {"clock", ReplayVerbs::clock},
    {"launch", ReplayVerbs::launch},
    {"advance", ReplayVerbs::advance},
    {"call", ReplayVerbs::call},
    {"settings", ReplayVerbs::settings},
    {"answer", ReplayVerbs::answer},
    {"quit", ReplayVerbs::quit},
    {"signal", ReplayVerbs::signal},
    {"crash", ReplayVerbs::crash},
    {"show", ReplayVerbs::show},
}};

/// What only the text of an object tells: the order of its keys, and whether one stands there twice.
struct Keys {
    std::optional<std::string> first;
    std::optional<std::string> doubled; ///< In this object or in one within.

    /// `text` must be valid JSON.
    static Keys of(std::string_view text)
    {
        Keys keys;
        std::vector<std::set<std::string>> open;
        const auto note = [&](int /*depth*/, Json::parse_event_t event, Json& key) {
            if (event == Json::parse_event_t::object_start) open.emplace_back();
            if (event == Json::parse_event_t::object_end) open.pop_back();
            if (event != Json::parse_event_t::key) return true;
            const auto name = key.get<std::string>();
            if (!keys.first) keys.first = name;
            if (!keys.doubled && !open.back().insert(name).second) keys.doubled = name;
            return true;
        };
        [[maybe_unused]] const Json value = Json::parse(text, note, false);
        return keys;
    }
};

const Verb& verbOf(const Json& object, const Keys& keys)
{
    const Verb* result = nullptr;
    for (const Verb& verb : verbs) {
        if (!object.contains(verb.name)) continue;
        if (result != nullptr) throw ReplayError{std::string{"two verbs: "} + result->name + " and " + verb.name};
        result = &verb;
    }
    if (result != nullptr) return *result;
    throw ReplayError{keys.first ? "unknown verb \"" + *keys.first + "\"" : "no verb"};
}

ReplayVerbs::Action readLine(std::string_view text, ReplayVerbs::Context& context)
{
    const auto json = parseJson(text);
    if (!json || !json->is_object()) throw ReplayError{"not a JSON object"};
    const auto keys = Keys::of(text);
    if (keys.doubled) throw ReplayError{"\"" + *keys.doubled + "\" stands there twice"};
    const Verb& verb = verbOf(*json, keys);
    ReplayFields fields{*json, verb.name};
    auto action = verb.read(fields, context);
    fields.finish();
    return action;
}

bool isSkipped(std::string_view line)
{
    return line.starts_with('#') || line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

int runReplayScript(std::string_view text, std::ostream& out, std::ostream& errors)
{
    ReplaySession session{out};
    ReplayVerbs::Context context;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (isSkipped(line)) continue;
        try {
            const auto act = readLine(line, context);
            act(session);
        } catch (const ReplayError& error) {
            out.flush();
            errors << "replay: line " << number << ": " << plainText(error.what()) << '\n';
            return replayRefused;
        }
        context.isFirst = false;
    }
    return replaySucceeded;
}

} // namespace quellon
