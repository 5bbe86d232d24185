#include "Quellon/SupportProgram.h"

#include "Quellon/ProgramOptions.h"
#include "Quellon/QuellonApp.h"
#include "Quellon/SnapshotService.h"
#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Diagnostics/RedactedOutline.h"
#include "QuellonCore/Diagnostics/StoreRedaction.h"
#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Presentation/AboutInfo.h"
#include "QuellonCore/Presentation/PlainText.h"
#include "QuellonHost/Posix/GuardSocket.h"
#include "QuellonHost/Posix/WholeFile.h"
#include "QuellonHost/SystemHost.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>
#include <variant>

namespace quellon::SupportProgram {

namespace {

/// How long the running guard has for its answer.
constexpr Seconds patience{2.0};

constexpr std::string_view remark =
    "\n"
    "# Read from the state directory: no guard has answered.\n"
    "# So guard, sampling and notify tell nothing of it, and process is the one that printed this.\n";

std::string stateDirectoryText(const Host& host)
{
    const AboutModel::Build build = QuellonApp::build();
    const auto snapshot = DebugSnapshot::ofStateDirectory(
        host, AboutInfo::displayVersion(build.shortVersion, build.build), build.systemVersion);
    return DebugExport::text(snapshot, host.files.homeDirectory().native(), host.platform) + '\n';
}

/// Says what is wrong with the file and gives the status for it.
int complain(std::string_view name, std::string_view problem, int status)
{
    std::fprintf(stderr, "Quellon: %s %s.\n", plainText(name).c_str(), std::string{problem}.c_str());
    return status;
}

} // namespace

int printSnapshot()
{
    SystemHost system;
    const Host host = system.host();
    const auto reply = GuardSocket::ask(SnapshotService::places(host), patience);
    if (reply.outcome == GuardSocket::Reply::Outcome::answered) return printAnswer(reply.text);
    const bool isNobody = reply.outcome == GuardSocket::Reply::Outcome::nobody;
    std::fprintf(stderr, "Quellon: %s; this is what the state directory tells.\n",
                 isNobody ? "no running guard was found" : "the running guard has not answered");
    return printAnswer(stateDirectoryText(host) + std::string{remark});
}

int printRedacted(const std::string& path)
{
    const bool isInput = path == "-";
    const std::string name = isInput ? "standard input" : path;
    const auto file =
        isInput ? WholeFile::read(STDIN_FILENO, FileStore::largestFile) : WholeFile::read(path, FileStore::largestFile);
    if (const auto* problem = std::get_if<WholeFile::Problem>(&file)) {
        return complain(name, problem->words, problem->isTooLarge ? ExitStatus::badData : ExitStatus::noInput);
    }
    const auto redacted = StoreRedaction::redactText(std::get<std::string>(file));
    if (const auto* refusal = std::get_if<StoreRedaction::Refusal>(&redacted)) {
        return complain(name, StoreRedaction::words(*refusal), ExitStatus::badData);
    }
    return printAnswer(RedactedOutline::text(std::get<RedactedJSON>(redacted)));
}

} // namespace quellon::SupportProgram
