#pragma once

#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Host/HttpClient.h"
#include "QuellonCore/Host/LogSink.h"

#include <filesystem>
#include <string_view>

namespace quellon {

struct SentSignal;

/// Is told of each effect on a scripted world when it happens, and of nothing that failed to happen (but of signals
/// that reached nobody). Calls may come from any thread, never two at a time.
class ScriptedObserver {
public:
    virtual ~ScriptedObserver() = default;
    /// A child process was started through the command runner.
    virtual void ran(const Command& /*command*/) {}
    /// A detached child was started.
    virtual void spawned(const Command& /*command*/) {}
    /// A signal was sent.
    virtual void signalled(const SentSignal& /*signal*/) {}
    /// A file was put in the place of whatever had its name.
    virtual void saved(const std::filesystem::path& /*file*/) {}
    /// A file that was there was removed.
    virtual void removed(const std::filesystem::path& /*file*/) {}
    /// A request was sent.
    virtual void requested(const HttpRequest& /*request*/) {}
    /// A line was written to the log.
    virtual void logged(std::string_view /*category*/, LogLevel /*level*/, std::string_view /*message*/) {}
};

} // namespace quellon
