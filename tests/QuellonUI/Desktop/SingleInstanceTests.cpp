#include "QuellonUI/Desktop/SingleInstance.h"

#include "SessionBus.h"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace quellon {
namespace {

using testing::BusClient;
using testing::SessionBus;
using testing::until;

const QString interface = QStringLiteral("org.freedesktop.Application");

class SingleInstanceTest : public ::testing::Test {
protected:
    SessionBus bus;
    BusClient one{bus};
    BusClient two{bus};
    int activations = 0;

    void SetUp() override { ASSERT_TRUE(bus.isRunning()); }
    std::unique_ptr<SingleInstance> first()
    {
        auto result = std::make_unique<SingleInstance>(one.bus());
        QObject::connect(result.get(), &SingleInstance::activated, result.get(), [this] { ++activations; });
        return result;
    }
    /// Whether a later process, which waits for the answer, finds the program running. It is another thread here, so
    /// that this one can answer.
    bool isRunningForALaterOne(std::chrono::milliseconds limit = SingleInstance::defaultLimit)
    {
        std::atomic<bool> isDone = false;
        bool result = false;
        std::thread later{[&] {
            result = SingleInstance{two.bus(), limit}.isAlreadyRunning();
            isDone = true;
        }};
        until([&] { return isDone.load(); });
        later.join();
        return result;
    }
    QDBusMessage call(const char* method, const QVariantList& arguments, const QString& of = interface)
    {
        return two.call(SingleInstance::name, SingleInstance::path, of, QLatin1String{method}, arguments);
    }
};

/// An owner of the name that isn't this program as it should be.
class StrangeOwner final : public QDBusVirtualObject {
public:
    std::function<bool(const QDBusMessage&, const QDBusConnection&)> onCall;
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override { return onCall(call, bus); }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
};

TEST_F(SingleInstanceTest, theFirst)
{
    const auto instance = first();
    EXPECT_FALSE(instance->isAlreadyRunning());
    EXPECT_EQ(one.bus().interface()->serviceOwner(SingleInstance::name).value(), one.bus().baseService());
    EXPECT_EQ(activations, 0);
}

TEST_F(SingleInstanceTest, theSecondBringsTheFirstForward)
{
    const auto instance = first();
    EXPECT_TRUE(isRunningForALaterOne());
    EXPECT_TRUE(until([&] { return activations == 1; }));
    EXPECT_TRUE(isRunningForALaterOne());
    EXPECT_TRUE(until([&] { return activations == 2; }));
    EXPECT_EQ(one.bus().interface()->serviceOwner(SingleInstance::name).value(), one.bus().baseService());
}

TEST_F(SingleInstanceTest, theNameIsFreeAgainAfterTheEnd)
{
    auto instance = first();
    instance.reset();
    EXPECT_FALSE(isRunningForALaterOne());
    EXPECT_EQ(activations, 0);
}

TEST_F(SingleInstanceTest, whatTheDesktopAsksFor)
{
    const auto instance = first();
    EXPECT_EQ(call("Activate", {QVariantMap{}}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Open", {QStringList{QStringLiteral("file:///x")}, QVariantMap{}}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("ActivateAction", {QStringLiteral("settings"), QVariantList{}, QVariantMap{}}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_TRUE(until([&] { return activations == 3; }));
    EXPECT_EQ(call("Activate", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("Activate", {1}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("Explode", {QVariantMap{}}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(call("Activate", {QVariantMap{}}, QStringLiteral("org.example")).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(activations, 3);
    const auto reply = call("Introspect", {}, QStringLiteral("org.freedesktop.DBus.Introspectable"));
    EXPECT_TRUE(reply.arguments().value(0).toString().contains(QStringLiteral("ActivateAction")));
}

TEST_F(SingleInstanceTest, anOwnerThatSaysNothing)
{
    StrangeOwner owner;
    owner.onCall = [](const QDBusMessage&, const QDBusConnection&) { return true; };
    one.bus().registerVirtualObject(SingleInstance::path, &owner);
    ASSERT_TRUE(one.own(SingleInstance::name));
    EXPECT_TRUE(isRunningForALaterOne(std::chrono::milliseconds{100})) << "it runs, though it hangs";
    one.bus().unregisterObject(SingleInstance::path);
}

TEST_F(SingleInstanceTest, anOwnerThatRefuses)
{
    ASSERT_TRUE(one.own(SingleInstance::name));
    EXPECT_TRUE(isRunningForALaterOne()) << "there is no object, but there is a process";
}

TEST_F(SingleInstanceTest, anOwnerThatEndsWhenItIsAsked)
{
    StrangeOwner owner;
    auto dying = std::make_unique<BusClient>(bus);
    owner.onCall = [&](const QDBusMessage&, const QDBusConnection&) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [&] { dying.reset(); }, Qt::QueuedConnection);
        return true;
    };
    dying->bus().registerVirtualObject(SingleInstance::path, &owner);
    ASSERT_TRUE(dying->own(SingleInstance::name));
    EXPECT_FALSE(isRunningForALaterOne(std::chrono::hours{1})) << "now this one is the first";
    EXPECT_EQ(dying, nullptr) << "it had been asked";
}

TEST_F(SingleInstanceTest, noBus)
{
    const QDBusConnection none{QStringLiteral("none")};
    EXPECT_FALSE(SingleInstance{none}.isAlreadyRunning());
}

TEST_F(SingleInstanceTest, aBusThatHasEnded)
{
    bus.stop();
    ASSERT_TRUE(until([&] { return !one.bus().isConnected(); }));
    EXPECT_FALSE(SingleInstance{one.bus()}.isAlreadyRunning());
}

TEST_F(SingleInstanceTest, theBusEndsLater)
{
    auto instance = first();
    bus.stop();
    ASSERT_TRUE(until([&] { return !one.bus().isConnected(); }));
    instance.reset();
    EXPECT_EQ(activations, 0);
}

} // namespace
} // namespace quellon
