#include "ReplayPrinter.h"

#include "QuellonCore/Presentation/OverviewModel.h"

#include <cmath>
#include <utility>

namespace quellon {

namespace {

OrderedJson line(const Command& command)
{
    return {{"path", command.path}, {"arguments", command.arguments}};
}

} // namespace

ReplayPrinter::ReplayPrinter(ScriptedHost& world, std::ostream& out) : world_{world}, out_{out}
{
    world_.observe(this);
}

ReplayPrinter::~ReplayPrinter()
{
    world_.observe(nullptr);
}

OrderedJson ReplayPrinter::moment(Seconds elapsed)
{
    constexpr std::int64_t perSecond = 1'000;
    const std::int64_t milliseconds = std::llround(elapsed.count() * double{perSecond});
    if (milliseconds % perSecond == 0) return milliseconds / perSecond;
    return static_cast<double>(milliseconds) / double{perSecond};
}

void ReplayPrinter::print(std::string_view key, OrderedJson value)
{
    OrderedJson object = {{"t", moment(world_.elapsed() - origin_)}};
    object[std::string{key}] = std::move(value);
    // What is no UTF-8 can only come from a text of the program that was cut in the wrong place; it is shown as such.
    out_ << object.dump(-1, ' ', false, OrderedJson::error_handler_t::replace) << '\n';
}

void ReplayPrinter::ran(const Command& command)
{
    print("run", line(command));
}

void ReplayPrinter::spawned(const Command& command)
{
    print("spawn", line(command));
}

void ReplayPrinter::signalled(const SentSignal& signal)
{
    print("signal", {{"pid", signal.pid}, {"name", processSignals.raw(signal.signal)}, {"reached", signal.reached}});
}

void ReplayPrinter::saved(const std::filesystem::path& file)
{
    print("save", file.filename().string());
}

void ReplayPrinter::removed(const std::filesystem::path& file)
{
    print("remove", file.filename().string());
}

void ReplayPrinter::logged(std::string_view category, LogLevel level, std::string_view message)
{
    print("log",
          {{"category", category}, {"level", level == LogLevel::error ? "error" : "info"}, {"message", message}});
}

void ReplayPrinter::requested(const HttpRequest& request)
{
    OrderedJson headers = OrderedJson::object();
    for (const auto& [name, value] : request.headers) headers[name] = value;
    print("http",
          {{"method", request.method}, {"url", request.url}, {"headers", std::move(headers)}, {"body", request.body}});
}

void ReplayPrinter::event(const GuardEvent& event)
{
    print("event", {{"kind", guardEventKinds.raw(event.kind)}, {"message", event.message}});
}

void ReplayPrinter::openSettings(SettingsTab tab, const std::optional<std::string>& detailApp)
{
    OrderedJson window = {{"tab", settingsTabs.raw(tab)}};
    if (detailApp) window["detailApp"] = *detailApp;
    print("openSettings", std::move(window));
}

void ReplayPrinter::countFromNow()
{
    origin_ = world_.elapsed();
}

void ReplayPrinter::plan(const NotificationPlan& plan)
{
    OrderedJson actions = OrderedJson::array();
    for (const NotificationAction action : plan.actions) actions.push_back(notificationActions.raw(action));
    print("plan", {{"style", notificationStyles.raw(plan.style)},
                   {"title", plan.title},
                   {"subtitle", plan.subtitle},
                   {"body", plan.body},
                   {"actions", std::move(actions)},
                   {"apps", plan.apps}});
}

} // namespace quellon
