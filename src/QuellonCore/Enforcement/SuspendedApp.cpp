#include "QuellonCore/Enforcement/SuspendedApp.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quellon {

std::string SuspendedApp::id() const
{
    std::string seconds = fmt::format("{}", (at.time_since_epoch() + referenceDateSince1970).count());
    if (seconds.find_first_of(".en") == std::string::npos) seconds += ".0";
    return app + "-" + seconds;
}

std::optional<std::string> SuspendedApp::start(std::int32_t pid) const
{
    const auto place = static_cast<std::size_t>(std::find(pids.begin(), pids.end(), pid) - pids.begin());
    return place < pids.size() && place < starts.size() ? std::optional{starts[place]} : std::nullopt;
}

Enforcer::Processes SuspendedApp::verifiedLivePIDs(const Host& host) const
{
    Enforcer::Processes result;
    for (const std::int32_t pid : pids) {
        if (auto process = Enforcer::verified(host, pid, start(pid).value_or(""))) result.push_back(std::move(process));
    }
    return result;
}

std::optional<SuspendedApp> SuspendedApp::fromJson(const Json& json)
{
    JsonFields fields{json};
    SuspendedApp entry;
    fields.required("app", entry.app);
    fields.required("pids", entry.pids);
    fields.defaulted("starts", entry.starts);
    fields.required("bytes", entry.bytes);
    fields.required("at", entry.at);
    return fields.result(std::move(entry));
}

Json SuspendedApp::toJson() const
{
    Json json = Json::object();
    putField(json, "app", app);
    putField(json, "pids", pids);
    putField(json, "starts", starts);
    putField(json, "bytes", bytes);
    putField(json, "at", at);
    return json;
}

} // namespace quellon
