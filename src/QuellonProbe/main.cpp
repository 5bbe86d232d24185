#include "QuellonProbe/Roles.h"
#include "QuellonProbe/Server.h"
#include "QuellonProbe/Text.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

using namespace quellon;

constexpr int refused = 1;
constexpr int misused = 2;

constexpr const char* help =
    "quellon-probe tells what Quellon needs to know of this machine's traffic, in the form of the tools of macOS.\n"
    "\n"
    "Usage: quellon-probe ROLE [ARGUMENT]    print one answer\n"
    "       quellon-probe serve              answer requests from standard input, a line each\n"
    "       quellon-probe --help | --version\n"
    "\n"
    "Roles:\n"
    "  nettop               TCP connections that leave the machine, with their bytes and processes\n"
    "  ps                   processes\n"
    "  route                the way to the internet\n"
    "  ifconfig INTERFACE   an interface, and whether its connection is metered\n"
    "  netstat INTERFACE    an interface's counters\n"
    "  networksetup         hardware ports\n"
    "  start PID            what tells a process from a later one with the same number\n"
    "  parent PID           a process's parent\n";

/// Fills the places of standard descriptors that are closed, so that nothing else is opened there and taken for them.
void fillStandardDescriptors()
{
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor >= 0) ::close(descriptor);
}

bool print(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return true;
    complain("the answer can't be written", errno);
    return false;
}

int serve(Roles& roles)
{
    roles.connections().subscribe();
    Server server{STDIN_FILENO, STDOUT_FILENO, [&](std::string_view request) { return roles.reply(request); },
                  roles.connections()};
    return server.run();
}

int answer(Roles& roles, const std::string& request)
{
    const auto reply = roles.reply(request);
    if (reply.kind == Server::Reply::Kind::misunderstood) {
        complain("try \"quellon-probe --help\"");
        return misused;
    }
    if (reply.kind == Server::Reply::Kind::refused) return refused;
    return print(reply.text) ? 0 : refused;
}

} // namespace

int main(int count, char** arguments)
{
    fillStandardDescriptors();
    // A reader that has gone is noticed when writing fails.
    std::signal(SIGPIPE, SIG_IGN);
    const std::string_view first = count > 1 ? arguments[1] : "";
    if (count == 2 && first == "--help") return print(help) ? 0 : refused;
    if (count == 2 && first == "--version") return print("quellon-probe " QUELLON_VERSION "\n") ? 0 : refused;
    if (count < 2 || count > 3) {
        complain("a role is needed, and at most one argument; try \"quellon-probe --help\"");
        return misused;
    }
    Roles roles;
    if (count == 2 && first == "serve") return serve(roles);
    std::string request{first};
    if (count == 3) request.append(" ").append(arguments[2]);
    return answer(roles, request);
}
