#include "Quellon/QuellonApp.h"

#include "Quellon/AppDelegate.h"
#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Engine/OnlineContexts.h"
#include "QuellonTerminal/PlainView.h"
#include "QuellonTerminal/TerminalView.h"

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace quellon {

namespace {

/// By the convention of no-color.org: set, and not empty.
bool wantsColours(const ProcessControl& processes)
{
    return processes.environment("NO_COLOR").value_or("").empty();
}

GuardEngine::Options engineOptions(const Host& host, NotificationFeed& notifications, const ProgramOptions& asked)
{
    constexpr std::string_view version = QUELLON_VERSION;
    const std::string system = SystemHost::systemVersion();
    GuardEngine::Options options;
    options.updateCheck = OnlineContexts::updateCheckContext(host, version, system, NetworkLog::shared());
    options.explain = OnlineContexts::explainContext(host, version, system, NetworkLog::shared());
    options.autoResumeSeconds = asked.autoResumeSeconds;
    options.notifier = [&notifications](const NotificationPlan& plan) { notifications.deliver(plan); };
    return options;
}

/// Lets everything go on that the engine has frozen, and leaves the engine as it is.
void thawOnly(const GuardEngine& engine)
{
    for (const SuspendedApp& entry : engine.suspended()) Enforcer::resume(engine.host(), entry.pids);
}

} // namespace

QuellonApp::QuellonApp(const ProgramOptions& options)
    : engine_(host_.host(), engineOptions(host_.host(), notifications_, options)),
      snapshots_(engine_, build()),
      thaw_([this] { thawOnly(engine_); })
{
    AppDelegate::cleanup = [this] { cleanUp(); };
    // Before any view: from here on a signal ends the program by way of the clean-up.
    AppDelegate::applicationDidFinishLaunching(host_.host());
}

QuellonApp::~QuellonApp()
{
    AppDelegate::cleanup = nullptr;
}

void QuellonApp::cleanUp()
{
    engine_.resumeAll(true);
    snapshots_.end();
}

int QuellonApp::runTerminal(const ProgramOptions& options)
{
    const TerminalView::Options viewOptions{.colours = wantsColours(host_.host().processes),
                                            .keys = isatty(STDIN_FILENO) == 1};
    std::unique_ptr<TerminalView> view;
    // First what is frozen: the terminal may make the program wait.
    AppDelegate::cleanup = [this, &view] {
        cleanUp();
        view.reset();
    };
    view = TerminalView::open(
        engine_, notifications_, viewOptions,
        [this](int descriptor, RunLoop::Work ready) { return runLoop().watch(descriptor, std::move(ready)); },
        [this] { runLoop().quit(); });
    if (!view) {
        std::fputs("Quellon: this terminal can't be drawn on (see TERM); printing lines instead.\n", stderr);
        return runPlain(options);
    }
    run(options);
    return ExitStatus::success;
}

int QuellonApp::runPlain(const ProgramOptions& options)
{
    int status = ExitStatus::success;
    const PlainView view{engine_, notifications_, STDOUT_FILENO, [this, &status](PlainView::End end) {
                             if (end == PlainView::End::failed) {
                                 std::fputs("Quellon: standard output can't be written.\n", stderr);
                                 status = ExitStatus::outputFailed;
                             }
                             runLoop().quit();
                         }};
    run(options);
    return status;
}

AboutModel::Build QuellonApp::build()
{
    return {.shortVersion = QUELLON_VERSION, .build = std::nullopt, .systemVersion = SystemHost::systemVersion()};
}

void QuellonApp::run(const ProgramOptions& options)
{
    RunLoop::Handle end;
    if (options.duration) end = runLoop().after(*options.duration, [this] { runLoop().quit(); });
    RunLoop::Handle asked;
    if (const auto descriptor = snapshots_.descriptor()) {
        asked = runLoop().watch(*descriptor, [this] { snapshots_.serve(); });
    }
    runLoop().run();
    AppDelegate::applicationWillTerminate();
}

} // namespace quellon
