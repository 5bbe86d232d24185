// How long the panel takes to open: from the moment at which the click on the tray item has arrived until all of it is
// painted, in memory. The guard is on a hotspot with 40 applications. Beside it, in the same run, a plain widget that
// holds as many labels in layouts as the panel has parts. A first opening is that of a process that has just started,
// with no font loaded and nothing drawn so far; of the later ones, each shows other amounts than the one before.

#include "Quellon/Desktop.h"
#include "QuellonCore/Presentation/PanelWorld.h"
#include "QuellonCore/Support/Fatal.h"
#include "QuellonUI/Kit/Appearance.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace quellon {
namespace {

constexpr std::string_view firstPanel = "--first-panel";
constexpr std::string_view firstPeer = "--first-peer";
constexpr double limit = 50.0; // milliseconds; printed, nothing hangs on it
constexpr int applications = 40;

void settleEvents()
{
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

/// Sees whether a window has been painted.
class PaintWatch final : public QObject {
public:
    explicit PaintWatch(QWidget& window) { window.installEventFilter(this); }
    bool isPainted = false;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        isPainted = isPainted || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }
};

/// Milliseconds until the events that `show` has led to have painted the window that it gives.
template <typename Show>
double untilPainted(const Show& show)
{
    QElapsedTimer timer;
    timer.start();
    QWidget& window = show();
    PaintWatch watch{window};
    // A window and all that is in it are painted by one event.
    while (!watch.isPainted) QApplication::processEvents();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// A guard with much to show, and the desktop program on it, without a message bus.
class PanelScene {
public:
    PanelScene()
    {
        move();
        // After that no time passes before the first opening, in which a toast could load the fonts.
        desktop_ = std::make_unique<Desktop>(world_.engine, notifications_,
                                             AboutModel::Build{"1.2.0", std::nullopt, "6.1.0"}, [] {});
    }

    /// All applications move other amounts than the time before.
    void move()
    {
        ++round_;
        std::vector<PanelWorld::Traffic> traffic;
        for (int i = 0; i < applications; ++i) {
            total_[static_cast<std::size_t>(i)] +=
                mega + static_cast<std::uint64_t>((i + round_) % applications) * 65'537;
            traffic.push_back({fmt::format("Some Program {}", i), total_[static_cast<std::size_t>(i)]});
        }
        world_.host.advance(Seconds{5.0});
        world_.move(traffic);
        settleEvents();
    }
    double open()
    {
        return untilPainted([this]() -> QWidget& {
            desktop_->showPanel();
            return panel();
        });
    }
    void close()
    {
        panel().close();
        settleEvents();
    }
    /// How many widgets of the panel can be seen.
    static int parts()
    {
        const auto all = panel().findChildren<QWidget*>();
        return static_cast<int>(std::ranges::count_if(all, [](const QWidget* each) { return each->isVisible(); }));
    }

private:
    int round_ = 0;
    std::vector<std::uint64_t> total_ = std::vector<std::uint64_t>(applications);
    PanelWorld world_{Platform::linux()};
    NotificationFeed notifications_;
    std::unique_ptr<Desktop> desktop_;

    static MenuPanel& panel()
    {
        for (QWidget* const each : QApplication::topLevelWidgets()) {
            if (auto* const panel = qobject_cast<MenuPanel*>(each)) return *panel;
        }
        fatal("there is no panel");
    }
};

/// The plain widget: rows of four labels, each with a text of its own.
class PeerScene {
public:
    explicit PeerScene(int labels) : labels_(labels) {}

    double open()
    {
        return untilPainted([this]() -> QWidget& {
            if (!window_) make();
            change();
            window_->show();
            return *window_;
        });
    }
    void close()
    {
        window_->close();
        settleEvents();
    }

private:
    int labels_;
    int round_ = 0;
    std::unique_ptr<QWidget> window_;

    void make()
    {
        constexpr int inRow = 4;
        window_ = std::make_unique<QWidget>();
        auto* const rows = new QVBoxLayout{window_.get()};
        QHBoxLayout* row = nullptr;
        for (int i = 0; i < labels_; ++i) {
            if (i % inRow == 0) rows->addLayout(row = new QHBoxLayout);
            row->addWidget(new QLabel);
        }
    }
    void change()
    {
        ++round_;
        int number = round_;
        for (QLabel* const each : window_->findChildren<QLabel*>()) each->setText(QString::number(++number));
    }
};

double median(std::vector<double> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// Puts the figures beside those that the benchmark's library prints.
void report(benchmark::State& state, const std::vector<double>& panel, const std::vector<double>& peer, int parts)
{
    state.counters["median_ms"] = median(panel);
    state.counters["worst_ms"] = *std::ranges::max_element(panel);
    state.counters["limit_ms"] = limit;
    state.counters["peer_ms"] = median(peer);
    state.counters["to_peer"] = median(panel) / median(peer);
    state.counters["parts"] = parts;
}

/// What a process of its own says of its first opening: milliseconds and how many parts there are.
std::pair<double, int> first(std::string_view what, int parts)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {QString::fromUtf8(what.data(), static_cast<qsizetype>(what.size())), QString::number(parts)});
    process.waitForFinished();
    const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
    if (words.size() != 2) fatal("a first opening has no time");
    return {words[0].toDouble(), words[1].toInt()};
}

void panelFirstOpening(benchmark::State& state)
{
    std::vector<double> panel;
    std::vector<double> peer;
    int parts = 0;
    for ([[maybe_unused]] auto _ : state) {
        double time = 0;
        std::tie(time, parts) = first(firstPanel, 0);
        panel.push_back(time);
        peer.push_back(first(firstPeer, parts).first);
        state.SetIterationTime(time / 1e3);
    }
    report(state, panel, peer, parts);
}
BENCHMARK(panelFirstOpening)->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);

void panelLaterOpening(benchmark::State& state)
{
    PanelScene scene;
    scene.open();
    const int parts = PanelScene::parts();
    scene.close();
    PeerScene plain{parts};
    plain.open();
    plain.close();
    std::vector<double> panel;
    std::vector<double> peer;
    for ([[maybe_unused]] auto _ : state) {
        scene.move();
        panel.push_back(scene.open());
        scene.close();
        peer.push_back(plain.open());
        plain.close();
        state.SetIterationTime(panel.back() / 1e3);
    }
    report(state, panel, peer, parts);
}
BENCHMARK(panelLaterOpening)->Iterations(100)->UseManualTime()->Unit(benchmark::kMillisecond);

int run(int argc, char** argv)
{
    const std::string_view asked = argc == 3 ? argv[1] : "";
    if (asked == firstPanel) {
        PanelScene scene;
        settleEvents();
        const double time = scene.open();
        std::printf("%f %d\n", time, PanelScene::parts());
        return 0;
    }
    if (asked == firstPeer) {
        const int labels = std::atoi(argv[2]);
        PeerScene scene{labels};
        std::printf("%f %d\n", scene.open(), labels);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace
} // namespace quellon

int main(int argc, char** argv)
{
    // Nobody's display and nobody's message bus.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    QApplication application{argc, argv};
    quellon::Appearance::applyColours(false);
    return quellon::run(argc, argv);
}
