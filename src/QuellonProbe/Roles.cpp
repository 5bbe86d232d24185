#include "QuellonProbe/Roles.h"

#include "QuellonProbe/IdentityRole.h"
#include "QuellonProbe/NetstatRole.h"
#include "QuellonProbe/NetworksetupRole.h"
#include "QuellonProbe/RouteRole.h"
#include "QuellonProbe/Text.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <net/if.h>

namespace quellon {

const Roles::Role Roles::table[] = {
    {"nettop", Argument::none, &Roles::nettop},        {"ps", Argument::none, &Roles::ps},
    {"route", Argument::none, &Roles::route},          {"ifconfig", Argument::interface, &Roles::ifconfig},
    {"netstat", Argument::interface, &Roles::netstat}, {"networksetup", Argument::none, &Roles::networksetup},
    {"start", Argument::process, &Roles::start},       {"parent", Argument::process, &Roles::parent},
};

Roles::Roles() : names_{proc_}, connections_{proc_, names_}, processes_{proc_, names_} {}

Server::Reply Roles::reply(std::string_view request)
{
    using Kind = Server::Reply::Kind;
    const auto blank = request.find(' ');
    const auto word = request.substr(0, blank);
    const auto argument = blank == std::string_view::npos ? std::string_view{} : request.substr(blank + 1);
    const auto* role = std::ranges::find(table, word, &Role::word);
    if (role == std::end(table)) {
        complain("unknown role \"" + cleanName(word) + "\"");
        return {Kind::misunderstood, {}};
    }
    const bool hasArgument = blank != std::string_view::npos;
    if (hasArgument != (role->argument != Argument::none) || !fits(role->argument, argument)) {
        complain("wrong argument for \"" + std::string{word} + "\"");
        return {Kind::misunderstood, {}};
    }
    auto answer = (this->*role->answer)(argument);
    if (!answer) return {Kind::refused, {}};
    return {Kind::answered, std::move(*answer)};
}

bool Roles::fits(Argument expected, std::string_view argument)
{
    if (expected == Argument::process) return ProcFolder::parsePid(argument).has_value();
    if (expected == Argument::none) return true;
    return !argument.empty() && argument.size() < IF_NAMESIZE && argument.find_first_of(" \t/") == argument.npos;
}

KernelNetwork* Roles::network()
{
    if (!network_) network_ = KernelNetwork::open();
    if (!network_) complain("the kernel's network tables can't be read", errno);
    return network_ ? &*network_ : nullptr;
}

Roles::Answer Roles::nettop(std::string_view)
{
    return connections_.answer();
}

Roles::Answer Roles::ps(std::string_view)
{
    return processes_.answer(connections_.seen());
}

Roles::Answer Roles::route(std::string_view)
{
    auto* tables = network();
    return tables ? RouteRole::answer(*tables) : std::nullopt;
}

Roles::Answer Roles::ifconfig(std::string_view interface)
{
    auto* tables = network();
    return tables ? IfconfigRole{*tables, devices_, manager_}.answer(interface) : std::nullopt;
}

Roles::Answer Roles::netstat(std::string_view interface)
{
    auto* tables = network();
    return tables ? NetstatRole::answer(*tables, interface) : std::nullopt;
}

Roles::Answer Roles::networksetup(std::string_view)
{
    auto* tables = network();
    return tables ? NetworksetupRole::answer(*tables, devices_) : std::nullopt;
}

Roles::Answer Roles::start(std::string_view process)
{
    auto answer = IdentityRole::start(proc_, *ProcFolder::parsePid(process));
    if (!answer) complain("the boot id can't be read");
    return answer;
}

Roles::Answer Roles::parent(std::string_view process)
{
    auto answer = IdentityRole::parent(proc_, *ProcFolder::parsePid(process));
    if (!answer) complain("the list of processes can't be read");
    return answer;
}

} // namespace quellon
