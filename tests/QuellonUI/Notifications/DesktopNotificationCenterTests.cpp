#include "QuellonUI/Notifications/DesktopNotificationCenter.h"

#include "../Desktop/SessionBus.h"
#include "FakeNotificationServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QFile>

#include <memory>
#include <utility>

namespace quellon {
namespace {

using ::testing::ElementsAre;
using testing::FakeNotificationServer;
using ::testing::IsEmpty;
using testing::SessionBus;
using testing::until;
using enum NotificationAuthorization;
using enum NotificationAlerts;
using Apps = std::vector<std::string>;
using Answers = std::vector<std::pair<std::string, Apps>>;
constexpr auto service = FakeNotificationServer::service;
/// For what is never answered; what is answered at all comes much sooner, also on a machine that is busy.
constexpr std::chrono::milliseconds shortLimit{400};

class DesktopNotificationCenterTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(bus.isRunning()) << "no dbus-daemon on this machine"; }
    void TearDown() override
    {
        center.reset();
        QDBusConnection::disconnectFromBus(clientName());
    }

    SessionBus bus;
    std::unique_ptr<DesktopNotificationCenter> center;
    Answers answers;
    int changes = 0;

    static QString clientName() { return QStringLiteral("center"); }
    void connectCenter(std::chrono::milliseconds limit = std::chrono::seconds{10})
    {
        const auto connection = QDBusConnection::connectToBus(bus.address(), clientName());
        ASSERT_TRUE(connection.isConnected());
        center = std::make_unique<DesktopNotificationCenter>(connection, limit);
        center->onResponse = [this](std::string_view action, const Apps& apps) {
            answers.emplace_back(std::string{action}, apps);
        };
        center->onSettingsChange = [this] { ++changes; };
        center->setCategories({{"ql.resume", {{"resume", "Resume"}}},
                               {"ql.suspend.view", {{"suspend", "Pause", true}, {"view", "Show details"}}}});
    }
    std::unique_ptr<FakeNotificationServer> makeServer(bool named = true) const
    {
        auto result = std::make_unique<FakeNotificationServer>(bus.address());
        EXPECT_TRUE(!named || result->takeName());
        return result;
    }
    NotificationSettings settings()
    {
        std::optional<NotificationSettings> result;
        center->readSettings([&result](const NotificationSettings& told) { result = told; });
        EXPECT_FALSE(result) << "in a later turn";
        EXPECT_TRUE(until([&result] { return result.has_value(); }));
        return result.value_or(NotificationSettings{});
    }
    static NotificationRequest request(std::string category, Apps apps, std::string title = "title")
    {
        return {NotificationStyle::persistent, std::move(title), "subtitle", "body",
                std::move(category),           std::move(apps)};
    }
    /// Shows a notification and waits until its number is known.
    void show(const NotificationRequest& request)
    {
        const std::size_t before = center->shown();
        center->add(request);
        ASSERT_TRUE(until([this, before] { return center->shown() > before; }));
    }
    static std::size_t notified(const FakeNotificationServer& server)
    {
        return server.callsOf(QStringLiteral("Notify")).size();
    }
};

TEST_F(DesktopNotificationCenterTest, settings)
{
    struct Case {
        const char* name;
        QVariantList capabilities;
        std::optional<QVariant> inhibited;
        NotificationSettings told;
    };
    const Case cases[] = {
        {"with buttons", {QStringList{QStringLiteral("actions")}}, std::nullopt, {authorized, enabled}},
        {"without buttons", {QStringList{QStringLiteral("body")}}, std::nullopt, {authorized, disabled}},
        {"not to disturb", {QStringList{QStringLiteral("actions")}}, true, {authorized, disabled}},
        {"may disturb", {QStringList{QStringLiteral("actions")}}, false, {authorized, enabled}},
        {"a property that is no truth value",
         {QStringList{QStringLiteral("actions")}},
         QStringLiteral("true"),
         {authorized, enabled}},
        {"nothing at all", {QStringList{}}, std::nullopt, {authorized, disabled}},
        {"capabilities that are a text", {QStringLiteral("actions")}, std::nullopt, {notDetermined, notSupported}},
        {"capabilities that are numbers", {7U, 8U}, std::nullopt, {notDetermined, notSupported}},
        {"an answer without content", {}, std::nullopt, {notDetermined, notSupported}},
    };
    const auto server = makeServer();
    connectCenter();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server->capabilities = c.capabilities;
        server->inhibited = c.inhibited;
        EXPECT_EQ(settings(), c.told);
    }
    server->failing.insert(QStringLiteral("GetCapabilities"));
    EXPECT_EQ(settings(), (NotificationSettings{notDetermined, notSupported})) << "an error";
}

TEST_F(DesktopNotificationCenterTest, withoutAServerNothingIsAuthorized)
{
    connectCenter();
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    center->add(request("ql.resume", {"app"}));
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    EXPECT_EQ(center->shown(), 0U);
}

TEST_F(DesktopNotificationCenterTest, withoutABusNothingIsAuthorized)
{
    center = std::make_unique<DesktopNotificationCenter>(QDBusConnection{QStringLiteral("never connected")});
    center->add(request("", {"app"}));
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    EXPECT_EQ(center->shown(), 0U);
}

TEST_F(DesktopNotificationCenterTest, aServerThatNeverAnswersHoldsNothingUp)
{
    const auto server = makeServer();
    server->silent = {QStringLiteral("GetCapabilities"), QStringLiteral("GetServerInformation"), QStringLiteral("Get")};
    connectCenter(shortLimit);
    EXPECT_EQ(settings(), (NotificationSettings{notDetermined, notSupported}));
    server->silent = {QStringLiteral("GetServerInformation"), QStringLiteral("Get")};
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled})) << "the rest is not needed";
    server->silent = {QStringLiteral("Notify")};
    center->add(request("ql.resume", {"app"}));
    EXPECT_TRUE(until([&] { return notified(*server) == 1; }));
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
    EXPECT_EQ(center->shown(), 0U);
}

TEST_F(DesktopNotificationCenterTest, requestAuthorization)
{
    connectCenter(shortLimit);
    std::vector<NotificationCenter::Authorization> told;
    const auto ask = [&] {
        const std::size_t before = told.size();
        center->requestAuthorization([&told](const auto& each) { told.push_back(each); });
        ASSERT_TRUE(until([&] { return told.size() > before; }));
    };
    ask();
    const auto server = makeServer();
    ask();
    server->silent = {QStringLiteral("GetCapabilities")};
    ask();
    EXPECT_THAT(told,
                ElementsAre(NotificationCenter::Authorization{false, {}}, NotificationCenter::Authorization{true, {}},
                            NotificationCenter::Authorization{false, "the notification server does not answer"}));
}

TEST_F(DesktopNotificationCenterTest, notify)
{
    const auto server = makeServer();
    server->capabilities = {
        QStringList{QStringLiteral("actions"), QStringLiteral("body-markup"), QStringLiteral("sound")}};
    connectCenter();
    show(request("ql.suspend.view", {"app"}, "a < b \xFF"));
    const auto calls = server->callsOf(QStringLiteral("Notify"));
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].signature(), QStringLiteral("susssasa{sv}i"));
    const QVariantList arguments = calls[0].arguments();
    EXPECT_EQ(arguments[0].toString(), QStringLiteral("Quellon"));
    EXPECT_EQ(arguments[1].toUInt(), 0U) << "replaces nothing";
    EXPECT_EQ(arguments[3].toString(), QStringLiteral("a < b \uFFFD"));
    EXPECT_EQ(arguments[4].toString(), QStringLiteral("subtitle\nbody"));
    EXPECT_EQ(arguments[5].toStringList(),
              (QStringList{QStringLiteral("default"), QStringLiteral("Show details"), QStringLiteral("suspend"),
                           QStringLiteral("Pause"), QStringLiteral("view"), QStringLiteral("Show details")}));
    const auto hints = qdbus_cast<QVariantMap>(arguments[6]);
    EXPECT_EQ(hints.size(), 4);
    EXPECT_EQ(hints[QStringLiteral("urgency")].typeId(), QMetaType::UChar) << "servers take no other number";
    EXPECT_EQ(hints[QStringLiteral("urgency")].toUInt(), 2U);
    EXPECT_EQ(hints[QStringLiteral("desktop-entry")].toString(), QStringLiteral("org.quellon.Quellon"));
    EXPECT_EQ(hints[QStringLiteral("category")].toString(), QStringLiteral("ql.suspend.view"));
    EXPECT_EQ(hints[QStringLiteral("sound-name")].toString(), QStringLiteral("message-new-instant"));
    EXPECT_EQ(arguments[7].toInt(), 0) << "stays";

    NotificationRequest quiet{NotificationStyle::transient, "title", "", "", "", {"app"}};
    show(quiet);
    const QVariantList second = server->callsOf(QStringLiteral("Notify")).at(1).arguments();
    const auto quietHints = qdbus_cast<QVariantMap>(second[6]);
    EXPECT_FALSE(quietHints.contains(QStringLiteral("category")));
    EXPECT_FALSE(quietHints.contains(QStringLiteral("sound-name")));
    EXPECT_TRUE(quietHints[QStringLiteral("suppress-sound")].toBool());
    EXPECT_EQ(second[7].toInt(), -1);
}

TEST_F(DesktopNotificationCenterTest, answersCarryTheirApps)
{
    const auto server = makeServer();
    connectCenter();
    show(request("ql.suspend.view", {"one"}));
    show(request("ql.resume", {"two", "\xFF not UTF-8"}));
    show(request("", {"three"}));
    server->answer(2, QStringLiteral("resume"));
    server->answer(1, QStringLiteral("suspend"));
    server->answer(3, QStringLiteral("default"));
    ASSERT_TRUE(until([&] { return answers.size() == 3; }));
    EXPECT_THAT(answers, ElementsAre(std::pair{"resume", Apps{"two", "\xFF not UTF-8"}},
                                     std::pair{"suspend", Apps{"one"}}, std::pair{"default", Apps{"three"}}));
    EXPECT_EQ(center->shown(), 0U);
    ASSERT_TRUE(until([&] { return server->callsOf(QStringLiteral("CloseNotification")).size() == 3; }));
    EXPECT_EQ(server->callsOf(QStringLiteral("CloseNotification"))[0].arguments(), QVariantList{2U});
}

TEST_F(DesktopNotificationCenterTest, answersThatMeanNothing)
{
    const auto server = makeServer();
    const auto stranger = makeServer(false);
    connectCenter();
    show(request("ql.resume", {"app"}));
    const auto settle = [this] { static_cast<void>(settings()); }; // the server answers behind what it has sent
    server->answer(7, QStringLiteral("resume"));                   // of another program, or from before a restart
    server->answer(1, QStringLiteral("terminate"));                // not one of its buttons
    server->answer(1, QStringLiteral("dismiss"));
    server->answer(1, QString{});
    server->emitSignal(QStringLiteral("ActionInvoked"), {QStringLiteral("1"), QStringLiteral("resume")});
    server->emitSignal(QStringLiteral("ActionInvoked"), {1U});
    server->emitSignal(QStringLiteral("ActionInvoked"), {});
    server->emitSignal(QStringLiteral("NotificationClosed"), {});
    server->emitSignal(QStringLiteral("NotificationClosed"), {QStringLiteral("1"), 2U});
    server->emitSignal(QStringLiteral("NotificationClosed"), {9U, 2U});
    settle();
    stranger->answer(1, QStringLiteral("resume"));
    stranger->emitSignal(QStringLiteral("NotificationClosed"), {1U, 2U});
    EXPECT_FALSE(stranger->takeName()) << "taken; and by now the bus has passed on what it has sent";
    settle();
    EXPECT_THAT(answers, IsEmpty());
    EXPECT_EQ(center->shown(), 1U);
    server->answer(1, QStringLiteral("resume"));
    server->answer(1, QStringLiteral("resume"));
    settle();
    EXPECT_EQ(answers.size(), 1U) << "once";
}

TEST_F(DesktopNotificationCenterTest, whatIsClosedIsForgotten)
{
    const auto server = makeServer();
    connectCenter();
    show(request("ql.resume", {"app"}));
    server->emitSignal(QStringLiteral("NotificationClosed"), {1U, 2U});
    server->answer(1, QStringLiteral("resume"));
    ASSERT_TRUE(until([&] { return center->shown() == 0; }));
    static_cast<void>(settings());
    EXPECT_THAT(answers, IsEmpty());
}

TEST_F(DesktopNotificationCenterTest, onlySoManyAreKept)
{
    const auto server = makeServer();
    connectCenter();
    static_cast<void>(settings());
    constexpr std::size_t most = DesktopNotificationCenter::mostShown;
    for (std::size_t i = 0; i < most + 1; ++i) center->add(request("ql.resume", {std::to_string(i)}));
    ASSERT_TRUE(until([&] { return notified(*server) == most + 1; }));
    static_cast<void>(settings());
    EXPECT_EQ(center->shown(), most);
    server->answer(1, QStringLiteral("resume"));
    server->answer(2, QStringLiteral("resume"));
    ASSERT_TRUE(until([this] { return !answers.empty(); }));
    EXPECT_THAT(answers, ElementsAre(std::pair{"resume", Apps{"1"}})) << "the oldest is given up";
}

TEST_F(DesktopNotificationCenterTest, numbersThatLie)
{
    const auto server = makeServer();
    connectCenter();
    for (const QVariant& id : {QVariant{QStringLiteral("1")}, QVariant{-1}, QVariant{QStringList{}}}) {
        server->nextID = id;
        center->add(request("ql.resume", {"app"}));
    }
    ASSERT_TRUE(until([&] { return notified(*server) == 3; }));
    static_cast<void>(settings());
    EXPECT_EQ(center->shown(), 0U);
}

TEST_F(DesktopNotificationCenterTest, aServerThatIsKilledAndStartedAgain)
{
    auto server = makeServer();
    connectCenter();
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
    show(request("ql.resume", {"old"}));
    server.reset();
    ASSERT_TRUE(until([&] { return changes == 1; }));
    EXPECT_EQ(center->shown(), 0U);
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    server = makeServer();
    ASSERT_TRUE(until([&] { return changes == 2; }));
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
    server->answer(1, QStringLiteral("resume"));
    static_cast<void>(settings());
    EXPECT_THAT(answers, IsEmpty()) << "the new one's first is another than the old one's";
    show(request("ql.resume", {"new"}));
    server->answer(1, QStringLiteral("resume"));
    ASSERT_TRUE(until([&] { return !answers.empty(); }));
    EXPECT_THAT(answers, ElementsAre(std::pair{"resume", Apps{"new"}}));
}

TEST_F(DesktopNotificationCenterTest, aServerThatDiesWhileItIsAsked)
{
    auto server = makeServer();
    server->silent = {QStringLiteral("GetCapabilities")};
    connectCenter();
    std::optional<NotificationSettings> told;
    center->readSettings([&told](const NotificationSettings& each) { told = each; });
    ASSERT_TRUE(until([&] { return !server->callsOf(QStringLiteral("GetCapabilities")).empty(); }));
    server.reset();
    ASSERT_TRUE(until([&] { return told.has_value(); }));
    EXPECT_EQ(told, (NotificationSettings{denied, notSupported}));
}

TEST_F(DesktopNotificationCenterTest, changesAreToldOnceTheSettingsWereRead)
{
    connectCenter();
    const auto server = makeServer();
    show(request("ql.resume", {"app"}));
    EXPECT_EQ(changes, 0) << "nobody has asked yet";
    static_cast<void>(settings());
    server->setInhibited(true);
    ASSERT_TRUE(until([&] { return changes == 1; }));
    EXPECT_EQ(settings(), (NotificationSettings{authorized, disabled}));
    server->setInhibited(false);
    ASSERT_TRUE(until([&] { return changes == 2; }));
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
}

TEST_F(DesktopNotificationCenterTest, theBusGoes)
{
    const auto server = makeServer();
    connectCenter();
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
    bus.stop();
    ASSERT_TRUE(until([&] { return changes > 0; }));
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    center->add(request("ql.resume", {"app"}));
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
}

class StartableServer : public DesktopNotificationCenterTest {
protected:
    void SetUp() override
    {
        DesktopNotificationCenterTest::SetUp();
        bus.makeStartable(QLatin1String{service}, QStringLiteral("/usr/bin/touch ") + startedFile());
    }
    [[nodiscard]] bool isStarted() const { return QFile::exists(startedFile()); }
    [[nodiscard]] QString startedFile() const { return bus.folder() + QStringLiteral("/started"); }
};

TEST_F(StartableServer, readingTheSettingsStartsNothing)
{
    connectCenter();
    EXPECT_EQ(settings(), (NotificationSettings{provisional, enabled}));
    EXPECT_FALSE(isStarted());
}

TEST_F(StartableServer, theFirstNotificationStartsIt)
{
    connectCenter();
    static_cast<void>(settings());
    center->add(request("ql.suspend.view", {"one"}));
    center->add(request("ql.resume", {"two"}));
    ASSERT_TRUE(until([this] { return isStarted(); }));
    EXPECT_EQ(changes, 0);
    const auto server = makeServer();
    ASSERT_TRUE(until([this] { return center->shown() == 2; }));
    EXPECT_EQ(changes, 1) << "what it can is known only now";
    const auto calls = server->callsOf(QStringLiteral("Notify"));
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].arguments()[5].toStringList().size(), 6) << "with the buttons that it can show";
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled}));
}

TEST_F(StartableServer, onlySoManyWaitForIt)
{
    connectCenter();
    constexpr std::size_t most = DesktopNotificationCenter::mostWaiting;
    for (std::size_t i = 0; i < most + 4; ++i) center->add(request("ql.resume", {"app"}, std::to_string(i)));
    ASSERT_TRUE(until([this] { return isStarted(); }));
    const auto server = makeServer();
    ASSERT_TRUE(until([this] { return center->shown() == most; }));
    EXPECT_EQ(notified(*server), most);
    EXPECT_EQ(server->callsOf(QStringLiteral("Notify"))[0].arguments()[3].toString(), QStringLiteral("4"));
}

class BrokenServer : public DesktopNotificationCenterTest {
protected:
    void SetUp() override
    {
        DesktopNotificationCenterTest::SetUp();
        bus.makeStartable(QLatin1String{service}, QStringLiteral("/bin/false"));
    }
};

TEST_F(BrokenServer, thatCannotBeStarted)
{
    connectCenter();
    EXPECT_EQ(settings(), (NotificationSettings{provisional, enabled}));
    center->add(request("ql.resume", {"app"}));
    EXPECT_EQ(settings(), (NotificationSettings{denied, notSupported}));
    EXPECT_EQ(center->shown(), 0U);
    const auto server = makeServer();
    EXPECT_EQ(settings(), (NotificationSettings{authorized, enabled})) << "somebody else has started one";
    EXPECT_EQ(notified(*server), 0U) << "what was given up stays so";
}

} // namespace
} // namespace quellon
