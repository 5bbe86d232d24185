#include "QuellonCore/Diagnostics/DebugExport.h"
#include "QuellonCore/Diagnostics/DebugSnapshot.h"
#include "QuellonCore/Engine/NotificationActionRouter.h"
#include "QuellonCore/Support/EnumTable.h"
#include "ReplayDetail.h"
#include "ReplayPanel.h"
#include "ReplayState.h"
#include "ReplayVerbs.h"

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace quellon::ReplayVerbs {

namespace {

constexpr EnumTable<RunLoop::Signal, 2> signals{{{
    {RunLoop::Signal::terminate, "SIGTERM", "terminate"},
    {RunLoop::Signal::interrupt, "SIGINT", "interrupt"},
}}};

/// For a verb with nothing to say.
void requireEmpty(ReplayFields& line, const char* verb)
{
    const ReplayFields fields{line.requiredJson(verb), verb};
    fields.finish();
}

/// A verb that needs a run and ends it.
void endRun(Context& context)
{
    requireRun(context);
    context.isRunning = false;
}

void showState(ReplaySession& session)
{
    session.printer().print("state", replayState(session.engine()));
}

void showSnapshot(ReplaySession& session)
{
    const GuardEngine& engine = session.engine();
    const auto& [version, system] = session.versions();
    const auto snapshot = DebugSnapshot::capture(engine, version, system, session.world().now());
    session.printer().print("snapshot", DebugExport::text(snapshot, session.world().files().homeDirectory().native(),
                                                          engine.host().platform));
}

void showMenuBar(ReplaySession& session)
{
    const auto bar = session.engine().menuBar(session.world().now());
    session.printer().print("menuBar", {{"title", bar.title}, {"symbol", bar.symbol}});
}

void showDetail(ReplaySession& session, const std::string& app)
{
    const auto model = AppDetailModel::of(session.engine(), app, false, session.world().now());
    session.printer().print("detail", replayDetail(model));
}

void showPanel(ReplaySession& session)
{
    session.printer().print("panel", replayPanel(MenuPanelModel::of(session.engine(), session.world().now())));
}

void showFile(ReplaySession& session, const std::string& name)
{
    OrderedJson content = nullptr;
    if (const auto text = session.world().files().get(session.stateFolder() / name)) {
        const auto json = parseJson(*text);
        content = json ? OrderedJson(*json) : OrderedJson::object({{"text", *text}});
    }
    session.printer().print("file", {{"name", name}, {"content", std::move(content)}});
}

} // namespace

void requireRun(const Context& context)
{
    if (!context.isRunning) throw ReplayError{"no guard is running: a launch comes first"};
}

Action launch(ReplayFields& line, Context& context)
{
    ReplayFields fields{line.requiredJson("launch"), "launch"};
    ReplaySession::Launch launch;
    launch.edition = fields.optional("edition", launch.edition);
    launch.autoStart = fields.optional("autoStart", launch.autoStart);
    fields.finish();
    if (context.isRunning) line.refuse("the guard is running already");
    context.isRunning = true;
    return [launch](ReplaySession& session) { session.launch(launch); };
}

Action advance(ReplayFields& line, Context& /*context*/)
{
    const Seconds duration = line.requiredDuration("advance");
    return [duration](ReplaySession& session) {
        // Far beyond what anybody asks for, and far below what a count of nanoseconds holds.
        constexpr Seconds most = std::chrono::hours{24 * 365 * 10};
        if (session.world().elapsed() + duration > most) throw ReplayError{"advance: a script lasts ten years at most"};
        session.world().advance(duration);
    };
}

Action settings(ReplayFields& line, Context& context)
{
    requireRun(context);
    return [keys = line.requiredJson("settings")](ReplaySession& session) {
        GuardEngine& engine = session.engine();
        GuardSettings settings = engine.settings();
        assignSettings(keys, settings, engine.host().identifiers);
        engine.setSettings(std::move(settings));
    };
}

Action answer(ReplayFields& line, Context& context)
{
    ReplayFields fields{line.requiredJson("answer"), "answer"};
    const auto action = fields.required<NotificationAction>("action");
    const auto apps = fields.required<std::vector<std::string>>("apps");
    fields.finish();
    requireRun(context);
    return [action, apps](ReplaySession& session) {
        GuardEngine& engine = session.engine();
        NotificationActionRouter::perform(
            action, apps, engine, [&](SettingsTab tab) { session.printer().openSettings(tab, engine.detailApp()); });
    };
}

Action quit(ReplayFields& line, Context& context)
{
    requireEmpty(line, "quit");
    endRun(context);
    return [](ReplaySession& session) { session.quit(); };
}

Action signal(ReplayFields& line, Context& context)
{
    const auto name = line.required<std::string>("signal");
    const auto signal = signals.parse(name);
    if (!signal) line.refuse("neither SIGTERM nor SIGINT; what can't be caught is a crash");
    endRun(context);
    return [signal = *signal](ReplaySession& session) { session.signal(signal); };
}

Action crash(ReplayFields& line, Context& context)
{
    requireEmpty(line, "crash");
    endRun(context);
    return [](ReplaySession& session) { session.crash(); };
}

Action show(ReplayFields& line, Context& context)
{
    const auto what = line.required<std::string>("show");
    if (what == "file") {
        const auto name = line.required<std::string>("name");
        return [name](ReplaySession& session) { showFile(session, name); };
    }
    if (what == "detail") {
        const auto app = line.required<std::string>("app");
        requireRun(context);
        return [app](ReplaySession& session) { showDetail(session, app); };
    }
    if (what != "state" && what != "menuBar" && what != "panel" && what != "snapshot")
        line.refuse("\"" + what + "\" can't be shown");
    requireRun(context);
    if (what == "panel") return showPanel;
    if (what == "snapshot") return showSnapshot;
    return what == "state" ? showState : showMenuBar;
}

} // namespace quellon::ReplayVerbs
