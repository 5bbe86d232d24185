#include "QuellonCore/Host/Platform.h"
#include "ReplayVerbs.h"

#include <date/tz.h>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quellon::ReplayVerbs {

namespace {

using Texts = std::map<std::string, std::string, std::less<>>;

/// The roles that a script speaks for. The questions about one process are answered from its `process` lines.
constexpr std::array<std::pair<std::string_view, ToolRole>, 6> toolNames{{
    {"nettop", ToolRole::nettop},
    {"ps", ToolRole::ps},
    {"route", ToolRole::route},
    {"ifconfig", ToolRole::ifconfig},
    {"netstat", ToolRole::netstat},
    {"networksetup", ToolRole::networksetup},
}};

std::int32_t requiredPID(ReplayFields& fields, std::int32_t pid)
{
    if (pid <= 0) fields.refuse("a process id is above 0");
    return pid;
}

bool isZone(const std::string& name)
{
    // The library knows no other way to say no.
    try {
        return date::locate_zone(name) != nullptr;
    } catch (const std::exception&) {
        return false;
    }
}

/// The name of a file and what it holds.
Texts readFiles(ReplayFields& fields)
{
    Texts files;
    const Json* json = fields.optionalJson("files");
    if (json == nullptr) return files;
    if (!json->is_object()) fields.refuse("\"files\" is no object of names to contents");
    for (const auto& [name, content] : json->items()) {
        if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) {
            fields.refuse("\"" + name + "\" is no file name");
        }
        const auto* text = content.get_ptr<const std::string*>();
        files[name] = text != nullptr ? *text : dumpJson(content).value_or("");
    }
    return files;
}

NotificationCapability readNotifications(ReplayFields& fields)
{
    NotificationCapability capability;
    const Json* json = fields.optionalJson("notifications");
    if (json == nullptr) return capability;
    ReplayFields inner{*json, "notifications"};
    capability.authorized = inner.optional("authorized", capability.authorized);
    capability.alertsEnabled = inner.optional("alertsEnabled", capability.alertsEnabled);
    capability.inAppChannelAvailable = inner.optional("inAppChannelAvailable", capability.inAppChannelAvailable);
    inner.finish();
    return capability;
}

Platform readPlatform(ReplayFields& fields)
{
    const auto name = fields.optional<std::string>("platform", "macOS");
    if (name == "macOS") return Platform::macOS();
    if (name == "Linux") return Platform::linux();
    fields.refuse("\"platform\" is neither macOS nor Linux");
}

} // namespace

Action world(ReplayFields& line, Context& context)
{
    if (!context.isFirst) line.refuse("comes first or not at all");
    ReplayFields fields{line.requiredJson("world"), "world"};
    const bool hasDate = fields.optionalJson("date") != nullptr;
    const auto date = hasDate ? std::optional{fields.requiredDate("date")} : std::nullopt;
    const auto zone = fields.optional<std::string>("timezone", "UTC");
    if (!isZone(zone)) fields.refuse("\"timezone\" names no time zone of this system's list");
    const Platform platform = readPlatform(fields);
    const auto pid = fields.optional<std::int32_t>("pid");
    if (pid) requiredPID(fields, *pid);
    const auto parents = fields.optional<std::vector<std::int32_t>>("parents");
    const auto environment = fields.optional<Texts>("environment", {});
    ReplaySession::Versions versions;
    versions.program = fields.optional("version", versions.program);
    versions.system = fields.optional("systemVersion", versions.system);
    const auto files = readFiles(fields);
    const auto notifications = readNotifications(fields);
    fields.finish();
    return [=](ReplaySession& session) {
        ScriptedHost& host = session.world();
        session.setDate(date.value_or(host.now()));
        host.setZone(zone);
        host.platform(platform);
        if (pid) host.processID(*pid);
        if (parents) host.parents(*parents);
        for (const auto& [name, value] : environment) host.environment(name, value);
        for (const auto& [name, text] : files) host.files().set(session.stateFolder() / name, text);
        session.setNotificationCapability(notifications);
        session.setVersions(versions);
    };
}

Action tool(ReplayFields& line, Context& /*context*/)
{
    ReplayFields fields{line.requiredJson("tool"), "tool"};
    const auto name = fields.required<std::string>("name");
    const auto known =
        std::find_if(toolNames.begin(), toolNames.end(), [&](const auto& each) { return each.first == name; });
    if (known == toolNames.end()) fields.refuse("no tool has the name \"" + name + "\"");
    const auto text = fields.optional<std::string>("text");
    const bool fails = fields.optional("fails", false);
    const bool timesOut = fields.optional("timesOut", false);
    if (int{text.has_value()} + int{fails} + int{timesOut} != 1) {
        fields.refuse("has exactly one of \"text\", \"fails\" and \"timesOut\"");
    }
    const Json* takes = fields.optionalJson("takes");
    const Seconds duration = takes != nullptr ? fields.duration("takes", *takes) : Seconds{0.0};
    fields.finish();
    return [role = known->second, text, timesOut, duration](ReplaySession& session) {
        ScriptedTool& scripted = session.world().tool(role).takes(duration);
        if (text)
            scripted.prints(*text);
        else if (timesOut)
            scripted.timesOut();
        else
            scripted.fails();
    };
}

Action addresses(ReplayFields& line, Context& /*context*/)
{
    const Json& list = line.requiredJson("addresses");
    if (!list.is_array()) line.refuse("not a list");
    std::vector<InterfaceAddress> result;
    for (const Json& each : list) {
        ReplayFields fields{each, "addresses"};
        auto name = fields.required<std::string>("name");
        auto ipv4 = fields.required<std::string>("ipv4");
        fields.finish();
        result.push_back({std::move(name), std::move(ipv4)});
    }
    return [result](ReplaySession& session) { session.world().setAddresses(result); };
}

Action process(ReplayFields& line, Context& /*context*/)
{
    ReplayFields fields{line.requiredJson("process"), "process"};
    const auto pid = requiredPID(fields, fields.required<std::int32_t>("pid"));
    ScriptedProcess process;
    process.start = fields.optional("start", process.start);
    process.parent = fields.optional<std::int32_t>("parent");
    process.denied = fields.optional("denied", process.denied);
    process.alive = fields.optional("alive", process.alive);
    process.obeysTerminate = fields.optional("obeysTerminate", process.obeysTerminate);
    fields.finish();
    return [pid, process](ReplaySession& session) { session.world().process(pid, process); };
}

Action http(ReplayFields& line, Context& /*context*/)
{
    ReplayFields fields{line.requiredJson("http"), "http"};
    const auto status = fields.optional<int>("status");
    const auto body = fields.optional<std::string>("body");
    const bool fails = fields.optional("fails", false);
    if (status.has_value() == fails || (fails && body)) fields.refuse("has either \"status\" or \"fails\"");
    constexpr int isNotHttp = 0;
    constexpr int most = 999;
    if (status && (*status < isNotHttp || *status > most)) fields.refuse("\"status\" is none");
    const Json* takes = fields.optionalJson("takes");
    ScriptedReply reply;
    if (status) reply.response = HttpResponse{*status, body.value_or("")};
    if (takes != nullptr) reply.takes = fields.duration("takes", *takes);
    fields.finish();
    return [reply](ReplaySession& session) { session.world().http().reply = reply; };
}

Action clock(ReplayFields& line, Context& /*context*/)
{
    const Date date = line.requiredDate("clock");
    return [date](ReplaySession& session) { session.setDate(date); };
}

} // namespace quellon::ReplayVerbs
