#include "QuellonUI/Desktop/ColourScheme.h"

#include "FakePortal.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPalette>

#include <memory>
#include <vector>

namespace quellon {
namespace {

using testing::BusClient;
using testing::FakePortal;
using testing::SessionBus;
using testing::until;
using Preference = ColourScheme::Preference;

class ColourSchemeTest : public ::testing::Test {
protected:
    const QPalette usual = QApplication::palette();
    SessionBus bus;
    FakePortal portal{bus};
    BusClient program{bus};
    std::unique_ptr<ColourScheme> scheme;
    std::vector<bool> told;

    void SetUp() override
    {
        ASSERT_TRUE(bus.isRunning());
        surroundings(false);
    }
    void TearDown() override { QApplication::setPalette(usual); }
    static void surroundings(bool dark)
    {
        QApplication::setPalette(QPalette{dark ? QColor{0x20, 0x20, 0x20} : QColor{0xef, 0xef, 0xef}});
    }
    void make()
    {
        told.clear();
        scheme = std::make_unique<ColourScheme>(program.bus());
        QObject::connect(scheme.get(), &ColourScheme::changed, scheme.get(),
                         [this](bool dark) { told.push_back(dark); });
    }
    /// Until the portal's answer has been taken.
    void settle()
    {
        until([&] { return portal.asked > 0; });
        program.call(portal.client().bus().baseService(), QStringLiteral("/"),
                     QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"));
    }
};

TEST_F(ColourSchemeTest, whatThePortalSays)
{
    struct Case {
        const char* name;
        QVariant value;
        bool isWrappedTwice;
        bool isPaletteDark;
        Preference preference;
        bool isDark;
    };
    const Case cases[] = {
        {"dark", uint{1}, true, false, Preference::dark, true},
        {"light", uint{2}, true, true, Preference::light, false},
        {"no preference, light palette", uint{0}, true, false, Preference::unknown, false},
        {"no preference, dark palette", uint{0}, true, true, Preference::unknown, true},
        {"a value of the future", uint{7}, true, false, Preference::unknown, false},
        {"wrapped once", uint{1}, false, false, Preference::dark, true},
        {"not a number", QStringLiteral("dark"), true, true, Preference::unknown, true},
        {"another number", 1, true, false, Preference::unknown, false},
        {"a setting that it doesn't know", QVariant{}, true, true, Preference::unknown, true},
    };
    portal.appear();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        portal.scheme = c.value;
        portal.isWrappedTwice = c.isWrappedTwice;
        portal.asked = 0;
        surroundings(c.isPaletteDark);
        make();
        EXPECT_EQ(scheme->isDark(), c.isPaletteDark) << "not known yet";
        settle();
        EXPECT_EQ(scheme->preference(), c.preference);
        EXPECT_EQ(scheme->isDark(), c.isDark);
        EXPECT_EQ(told, c.isDark == c.isPaletteDark ? std::vector<bool>{} : std::vector<bool>{c.isDark});
    }
}

TEST_F(ColourSchemeTest, changes)
{
    portal.appear();
    make();
    settle();
    for (const bool dark : {true, false, true}) {
        portal.change(dark ? uint{1} : uint{2});
        EXPECT_TRUE(until([&] { return scheme->isDark() == dark; }));
    }
    EXPECT_EQ(told, (std::vector<bool>{true, false, true}));
    portal.change(uint{1});
    portal.change(uint{2}, "accent-color");
    portal.change(uint{0});
    EXPECT_TRUE(until([&] { return !scheme->isDark(); })) << "as the palette was";
    EXPECT_EQ(told, (std::vector<bool>{true, false, true, false}));
}

TEST_F(ColourSchemeTest, thePaletteThatCounts)
{
    make();
    surroundings(true);
    EXPECT_FALSE(scheme->isDark()) << "what the application sets itself doesn't count";
}

TEST_F(ColourSchemeTest, nobodyAnswers)
{
    portal.isSilent = true;
    portal.appear();
    surroundings(true);
    make();
    ASSERT_TRUE(until([&] { return portal.asked == 1; }));
    EXPECT_TRUE(scheme->isDark());
    portal.change(uint{2});
    EXPECT_TRUE(until([&] { return !scheme->isDark(); })) << "it tells of changes all the same";
    scheme.reset();
}

TEST_F(ColourSchemeTest, noPortal)
{
    make();
    portal.change(uint{1});
    EXPECT_TRUE(until([&] { return scheme->isDark(); })) << "one that came later";
}

TEST_F(ColourSchemeTest, noBus)
{
    surroundings(true);
    EXPECT_TRUE(ColourScheme{QDBusConnection{QStringLiteral("none")}}.isDark());
    surroundings(false);
    EXPECT_FALSE(ColourScheme{QDBusConnection{QStringLiteral("none")}}.isDark());
}

} // namespace
} // namespace quellon
