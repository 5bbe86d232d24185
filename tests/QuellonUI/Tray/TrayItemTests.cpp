#include "QuellonUI/Tray/TrayAnchor.h"
#include "QuellonUI/Tray/TrayItem.h"

#include "FakeWatcher.h"
#include "TrayModels.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace quellon {
namespace {

using testing::BusClient;
using testing::FakeWatcher;
using testing::guardingModel;
using testing::pausedModel;
using testing::SessionBus;
using testing::until;
using Availability = TrayItem::Availability;

/// The tray of a window system; what happens to it is kept.
struct FakeEmbedded final : EmbeddedTray {
    struct Record {
        int made = 0;
        FakeEmbedded* now = nullptr;
        bool isAvailable = true;
    };
    explicit FakeEmbedded(Record& into) : record{into}
    {
        ++record.made;
        record.now = this;
    }
    ~FakeEmbedded() override { record.now = nullptr; }
    FakeEmbedded(const FakeEmbedded&) = delete;
    FakeEmbedded& operator=(const FakeEmbedded&) = delete;
    [[nodiscard]] bool isAvailable() const override { return record.isAvailable; }
    void setModel(const TrayModel& shown) override { model = shown; }

    Record& record;
    TrayModel model;
};

class TrayItemTest : public ::testing::Test {
protected:
    SessionBus bus;
    FakeWatcher watcher{bus};
    BusClient program{bus};
    FakeEmbedded::Record embedded;
    std::unique_ptr<TrayItem> item;
    int told = 0; ///< How often a change of the availability was told.

    void SetUp() override { ASSERT_TRUE(bus.isRunning()); }
    void make(std::chrono::milliseconds limit = std::chrono::seconds{10})
    {
        item = std::make_unique<TrayItem>(
            TrayItem::Surroundings{program.bus(), limit, [this] { return std::make_unique<FakeEmbedded>(embedded); }});
        QObject::connect(item.get(), &TrayItem::availabilityChanged, item.get(), [this] { ++told; });
        item->setModel(guardingModel());
    }
    [[nodiscard]] bool becomes(Availability availability) const
    {
        return until([&] { return item->availability() == availability; });
    }
    /// What the host reads of the item.
    QVariant property(const char* name)
    {
        const auto reply = watcher.client().call(
            program.bus().baseService(), StatusNotifierItem::path, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"), {QStringLiteral("org.kde.StatusNotifierItem"), QString::fromLatin1(name)});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }
};

TEST_F(TrayItemTest, aHostThatIsThere)
{
    watcher.appear();
    make();
    EXPECT_EQ(item->availability(), std::nullopt) << "not known yet";
    ASSERT_TRUE(becomes(Availability::host));
    EXPECT_EQ(watcher.items, QStringList{program.bus().baseService()});
    EXPECT_EQ(told, 1);
    EXPECT_EQ(embedded.made, 0) << "the toolkit must not settle for its own way";
    EXPECT_EQ(property("Title").toString().toStdString(), guardingModel().accessibleText);
    item->setModel(pausedModel());
    EXPECT_EQ(property("Title").toString().toStdString(), pausedModel().accessibleText);
}

TEST_F(TrayItemTest, aHostThatComesLater)
{
    make();
    ASSERT_TRUE(becomes(Availability::embedded));
    ASSERT_NE(embedded.now, nullptr);
    EXPECT_EQ(embedded.now->model, guardingModel());
    watcher.appear();
    ASSERT_TRUE(becomes(Availability::host));
    EXPECT_EQ(watcher.items, QStringList{program.bus().baseService()});
    EXPECT_EQ(embedded.now, nullptr) << "not in two places";
    EXPECT_EQ(told, 2);
}

TEST_F(TrayItemTest, aHostThatIsStartedAgain)
{
    watcher.appear();
    make();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(becomes(Availability::host));
        EXPECT_EQ(watcher.items.size(), 1);
        watcher.vanish();
        ASSERT_TRUE(becomes(Availability::embedded));
        item->setModel(round % 2 == 0 ? pausedModel() : guardingModel());
        EXPECT_EQ(embedded.now->model, round % 2 == 0 ? pausedModel() : guardingModel());
        watcher.appear();
    }
    ASSERT_TRUE(becomes(Availability::host));
    EXPECT_EQ(embedded.made, 3);
}

TEST_F(TrayItemTest, aWatcherWithoutHost)
{
    watcher.hasHost = false;
    watcher.appear();
    make();
    ASSERT_TRUE(becomes(Availability::embedded));
    EXPECT_EQ(watcher.items.size(), 1) << "a host that comes finds it";
    watcher.setHost(true);
    ASSERT_TRUE(becomes(Availability::host));
    EXPECT_EQ(watcher.items.size(), 1);
    EXPECT_EQ(embedded.now, nullptr);
    watcher.setHost(false);
    ASSERT_TRUE(becomes(Availability::embedded));
}

TEST_F(TrayItemTest, noTrayAtAll)
{
    embedded.isAvailable = false;
    make();
    ASSERT_TRUE(becomes(Availability::none));
    embedded.isAvailable = true;
    item->setModel(pausedModel());
    EXPECT_EQ(item->availability(), Availability::embedded) << "it came later";
    embedded.isAvailable = false;
    item->setModel(pausedModel());
    EXPECT_EQ(item->availability(), Availability::none) << "an equal model looks again too";
}

TEST_F(TrayItemTest, aWindowSystemWithoutTray)
{
    item = std::make_unique<TrayItem>(
        TrayItem::Surroundings{program.bus(), std::chrono::seconds{10}, [] { return nullptr; }});
    ASSERT_TRUE(becomes(Availability::none));
    item->setModel(pausedModel());
    watcher.appear();
    ASSERT_TRUE(becomes(Availability::host));
}

TEST_F(TrayItemTest, aHostThatRefuses)
{
    watcher.refuses = true;
    watcher.appear();
    make();
    ASSERT_TRUE(becomes(Availability::none));
    EXPECT_EQ(embedded.made, 0);
    EXPECT_EQ(watcher.asked, 1) << "it is not asked again and again";
    item->setModel(pausedModel());
    EXPECT_EQ(item->availability(), Availability::none);
    watcher.vanish();
    watcher.refuses = false;
    watcher.appear();
    ASSERT_TRUE(becomes(Availability::host)) << "another one may be better";
}

TEST_F(TrayItemTest, aHostThatSaysNothing)
{
    watcher.isSilent = true;
    watcher.appear();
    make(std::chrono::milliseconds{50});
    ASSERT_TRUE(becomes(Availability::none));
    EXPECT_EQ(embedded.made, 0) << "the toolkit would wait for its answers";
    EXPECT_EQ(watcher.asked, 1);
}

TEST_F(TrayItemTest, nothingWaitsForAHost)
{
    watcher.isSilent = true;
    watcher.appear();
    make(std::chrono::hours{1});
    ASSERT_TRUE(until([&] { return watcher.asked == 1; }));
    EXPECT_EQ(item->availability(), std::nullopt);
    item->setModel(pausedModel());
    EXPECT_EQ(property("Title").toString().toStdString(), pausedModel().accessibleText);
    item.reset();
}

TEST_F(TrayItemTest, theBusEnds)
{
    watcher.appear();
    make();
    ASSERT_TRUE(becomes(Availability::host));
    bus.stop();
    ASSERT_TRUE(becomes(Availability::embedded));
    item->setModel(pausedModel());
    EXPECT_EQ(embedded.now->model, pausedModel());
    item.reset();
}

TEST_F(TrayItemTest, noBus)
{
    item = std::make_unique<TrayItem>(
        TrayItem::Surroundings{QDBusConnection{QStringLiteral("none")}, std::chrono::seconds{10},
                               [this] { return std::make_unique<FakeEmbedded>(embedded); }});
    item->setModel(guardingModel());
    ASSERT_TRUE(becomes(Availability::embedded));
    item->setModel(pausedModel());
    EXPECT_EQ(embedded.now->model, pausedModel());
}

TEST_F(TrayItemTest, clicksOnTheItemOfTheWindowSystem)
{
    make();
    ASSERT_TRUE(becomes(Availability::embedded));
    QList<QPoint> clicks;
    std::vector<TrayCommand> commands;
    QObject::connect(item.get(), &TrayItem::activated, item.get(), [&](QPoint at) { clicks.append(at); });
    QObject::connect(item.get(), &TrayItem::chosen, item.get(), [&](TrayCommand each) { commands.push_back(each); });
    Q_EMIT embedded.now->activated({1109, 774});
    Q_EMIT embedded.now->chosen(TrayCommand::settings);
    EXPECT_EQ(clicks, QList<QPoint>{QPoint(1109, 774)}) << "the window system knows where it is";
    EXPECT_EQ(commands, std::vector<TrayCommand>{TrayCommand::settings});
}

TEST_F(TrayItemTest, clicksAtAHost)
{
    watcher.appear();
    make();
    ASSERT_TRUE(becomes(Availability::host));
    std::vector<TrayCommand> commands;
    int clicks = 0;
    QObject::connect(item.get(), &TrayItem::activated, item.get(), [&] { ++clicks; });
    QObject::connect(item.get(), &TrayItem::chosen, item.get(), [&](TrayCommand each) { commands.push_back(each); });
    const QString service = program.bus().baseService();
    watcher.client().call(service, StatusNotifierItem::path, QStringLiteral("org.kde.StatusNotifierItem"),
                          QStringLiteral("Activate"), {1201, 14});
    EXPECT_TRUE(until([&] { return clicks == 1; }));
    watcher.client().call(service, BusMenu::path, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"),
                          {8, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant{0}), uint{0}});
    EXPECT_TRUE(until([&] { return commands == std::vector<TrayCommand>{TrayCommand::quit}; }));
}

TEST(TrayHost, whichProgramsShowLabels)
{
    struct Case {
        std::string_view program;
        bool showsLabels;
    };
    constexpr Case cases[] = {
        {"gnome-shell", true},
        {"ayatana-indicator-application-service", true},
        {"indicator-application-service", true},
        {"xapp-sn-watcher", true},
        {"mate-panel", false}, // shows it in the icon's place
        {"xfce4-panel", false},
        {"lxqt-panel", false},
        {"plasmashell", false},
        {"kded5", false},
        {"waybar", false},
        {"", false},
    };
    for (const auto& c : cases) EXPECT_EQ(TrayHost::showsLabels(c.program), c.showsLabels) << c.program;
}

TEST(TrayAnchor, whomToTrust)
{
    const QList<QRect> screens{{0, 0, 1280, 800}, {1280, 0, 1920, 1080}};
    struct Case {
        const char* name;
        QPoint reported;
        QPoint cursor;
        QPoint anchor;
    };
    constexpr Case cases[] = {
        {"a panel at the top", {1201, 14}, {1203, 10}, {1201, 14}},
        {"a panel at the bottom", {900, 790}, {900, 770}, {900, 790}},
        {"a panel at the left", {20, 400}, {30, 380}, {20, 400}},
        {"a panel of the second screen", {3100, 1070}, {3098, 1072}, {3100, 1070}},
        {"the pointer, told as it is", {1201, 14}, {1201, 14}, {1201, 14}},
        {"an item that can't be there", {0, 28}, {1135, 14}, {1135, 14}},
        {"nothing known", {0, 0}, {640, 400}, {640, 400}},
        {"device pixels on a scaled screen", {2402, 28}, {1201, 14}, {1201, 14}},
        {"the middle of a screen", {640, 400}, {650, 410}, {650, 410}},
        {"the edge between two screens", {1270, 400}, {1272, 400}, {1270, 400}},
        {"outside of every screen", {1201, -20}, {1201, 5}, {1201, 5}},
        {"as near as counts", {1201, 63}, {1201, 127}, {1201, 63}},
        {"not near the edge", {1201, 64}, {1201, 64}, {1201, 64}},
        {"not near the cursor", {1201, 14}, {1201, 79}, {1201, 79}},
    };
    for (const auto& c : cases) { EXPECT_EQ(trayAnchor(c.reported, c.cursor, true, screens), c.anchor) << c.name; }
    EXPECT_EQ(trayAnchor({10, 10}, {12, 12}, true, {}), QPoint(12, 12)) << "no screen";
}

TEST(TrayAnchor, aCursorThatWasSeenLongAgo)
{
    const QList<QRect> screens{{0, 0, 1280, 800}};
    EXPECT_EQ(trayAnchor({1201, 790}, {300, 200}, false, screens), QPoint(1201, 790));
    EXPECT_EQ(trayAnchor({640, 400}, {300, 200}, false, screens), QPoint(300, 200)) << "where no tray is";
    EXPECT_EQ(trayAnchor({2402, 28}, {300, 200}, false, screens), QPoint(300, 200)) << "outside of every screen";
}

} // namespace
} // namespace quellon
