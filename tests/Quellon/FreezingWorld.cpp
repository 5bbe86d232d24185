#include "FreezingWorld.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace quellon {

namespace fs = std::filesystem;

namespace {

constexpr std::array names{"first", "second", "third"};

/// A new folder beside the program, so that the program can be linked into it.
fs::path makeFolder()
{
    std::string name = QUELLON_PROGRAM ".test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    return name;
}

void write(const fs::path& file, std::string_view content)
{
    std::ofstream stream{file, std::ios::binary};
    stream << content;
    if (!stream.flush()) std::abort();
}

} // namespace

Victim::Victim() : pid_{fork()}
{
    if (pid_ != 0) return;
    while (true) pause();
}

Victim::~Victim()
{
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool Victim::hasStopped() const
{
    int status = 0;
    return waitpid(pid_, &status, WUNTRACED | WNOHANG) == pid_ && WIFSTOPPED(status);
}

bool Victim::hasContinued() const
{
    int status = 0;
    return waitpid(pid_, &status, WCONTINUED | WNOHANG) == pid_ && WIFCONTINUED(status);
}

FreezingWorld::FreezingWorld(std::size_t applications, std::string_view settings)
    : folder_{makeFolder()}, victims_(applications)
{
    fs::create_hard_link(QUELLON_PROGRAM, folder_ / "Quellon");
    write(folder_ / "quellon-probe", helper());
    fs::permissions(folder_ / "quellon-probe", fs::perms::owner_all);
    fs::create_directory(folder_ / "state");
    setStateFile(
        "settings.json",
        R"({"onboarded": true, "sampleInterval": 0.1, "rules": [{"id": "0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F01",)"
        R"( "windowSeconds": 60, "thresholdBytes": 1000000, "level": "enforce", "enabled": true}])" +
            std::string{settings} + "}");
}

FreezingWorld::~FreezingWorld()
{
    std::error_code error;
    fs::remove_all(folder_, error);
}

std::string FreezingWorld::helper() const
{
    std::string traffic;
    std::string processes;
    for (std::size_t i = 0; i < victims_.size(); ++i) {
        const std::string name = names.at(i);
        const std::string pid = std::to_string(victims_[i].pid());
        traffic += "12:00:00.000001," + name + "." + pid +
                   ",,$total,0,\n12:00:00.000001,tcp4 172.20.10.4:" + std::to_string(50'000 + i) +
                   "<->203.0.113.9:443,wlan0,$total,0,\n";
        processes += pid + " 1000 " + pid + " /opt/tests/" + name + "\n";
    }
    return "#!/bin/sh\n"
           "total=0\n"
           "answer() { printf '%s\\n%s' \"${#1}\" \"$1\"; }\n"
           "while read -r role argument; do\n"
           "    case $role in\n"
           "    nettop) total=$((total + 10000000)); answer \"time,,interface,bytes_in,bytes_out,\n" +
           traffic +
           "\" ;;\n"
           "    ps) answer \"" +
           processes +
           "\" ;;\n"
           "    route) answer \"    gateway: 172.20.10.1\n  interface: wlan0\n\" ;;\n"
           "    *) printf '0\\n' ;;\n"
           "    esac\n"
           "done\n";
}

ChildTerminal::Setup FreezingWorld::setup(std::vector<std::string> arguments) const
{
    // What the watchdog is for is over when it wakes; longer than any test waits.
    arguments.insert(arguments.end(), {"--auto-resume", "90"});
    return {.arguments = std::move(arguments),
            .environment = {{"QUELLON_STATE_DIR", folder_ / "state"}},
            .program = folder_ / "Quellon"};
}

bool FreezingWorld::awaitFreeze(ChildTerminal& terminal) const
{
    std::size_t frozen = 0;
    return terminal.waitUntil([&] {
        while (frozen < victims_.size() && victims_[frozen].hasStopped()) ++frozen;
        if (frozen < victims_.size()) return false;
        const std::string record = stateFile("suspended.json");
        return std::ranges::all_of(victims_, [&record](const Victim& victim) {
            return record.find("[" + std::to_string(victim.pid()) + "]") != std::string::npos;
        });
    });
}

bool FreezingWorld::allGoOn() const
{
    return std::ranges::all_of(victims_,
                               [](const Victim& victim) { return victim.hasContinued() && !victim.hasStopped(); });
}

std::string FreezingWorld::stateFile(std::string_view name) const
{
    std::ifstream file{folder_ / "state" / name, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

void FreezingWorld::setStateFile(std::string_view name, std::string_view content) const
{
    write(folder_ / "state" / name, content);
}

void FreezingWorld::removeHelper() const
{
    fs::remove(folder_ / "quellon-probe");
}

void FreezingWorld::upgrade() const
{
    // To put a file in the place of another name of itself does nothing.
    fs::remove(folder_ / "Quellon");
    fs::create_hard_link(QUELLON_PROGRAM, folder_ / "Quellon");
    write(folder_ / "quellon-probe.new", helper());
    fs::permissions(folder_ / "quellon-probe.new", fs::perms::owner_all);
    fs::rename(folder_ / "quellon-probe.new", folder_ / "quellon-probe");
}

bool FreezingWorld::killHelpers(pid_t program)
{
    const std::string number = std::to_string(program);
    std::size_t killed = 0;
    for (const auto& task : fs::directory_iterator{"/proc/" + number + "/task"}) {
        std::ifstream children{task.path() / "children"};
        for (pid_t child = 0; children >> child;) {
            std::ifstream file{"/proc/" + std::to_string(child) + "/cmdline", std::ios::binary};
            const std::string words{std::istreambuf_iterator<char>{file}, {}};
            if (words.find("quellon-probe") != std::string::npos && kill(child, SIGKILL) == 0) ++killed;
        }
    }
    return killed > 0;
}

} // namespace quellon
