#include "PanelTest.h"

#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/ToolTipText.h"
#include "QuellonUI/Panel/HeaderView.h"
#include "QuellonUI/Panel/UsageRowView.h"

#include <QHelpEvent>
#include <QToolTip>

#include <optional>

namespace quellon {
namespace {

using Kind = PanelAction::Kind;
using namespace PanelModels;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class MenuContentTest : public PanelTest {
protected:
    [[nodiscard]] std::vector<SymbolLabel*> symbols(std::string_view name) const
    {
        std::vector<SymbolLabel*> result;
        for (SymbolLabel* const each : panel.findChildren<SymbolLabel*>()) {
            if (each->isVisible() && each->name() == name) result.push_back(each);
        }
        return result;
    }
};

TEST_F(MenuContentTest, everySectionInItsOrder)
{
    open(everything());
    EXPECT_THAT(
        texts(),
        ElementsAre("Guarding", "wlan0 · gateway 172.20.10.1 (hotspot range)",
                    "Your phone is connected, but traffic isn't using it",
                    "usb0 is ready, but Linux is still using Wi-Fi.", "How to fix", "Don't show again",
                    "Version 1.3 is available", "You're running an older build.", "Open download page", "Later",
                    "Pixel 8", "This month", "9.30 GB / 10.00 GB", "0.70 GB left · 12d to reset · runs out Mar 20",
                    "Today 120.0 MB / 59.7 MB · over today's pace", "at least — 2 gap(s) couldn't be measured",
                    "Last 1min", "limit 75.0 MB", "firefox", "91.3 MB",
                    "A web browser. What it loads depends on the pages that are open.",
                    "Asked 2 times today · the last answer was to allow it", "Details…", "syncthing", "🐌", "31.8 MB",
                    "apt", "zzz 12m", "18.4 MB", "5 more apps · 3.1 MB", "Paused", "Resume all", "cloud-sync", "Resume",
                    "Steam", "Resume", "Peak this week", "firefox 88.1 MB", "of 75.0 MB", "Settings…", "Quit Quellon"));
}

TEST_F(MenuContentTest, whatIsAbsentIsNotThere)
{
    struct Case {
        const char* name;
        MenuPanelModel model;
        std::vector<std::string> there;
        std::vector<std::string> missing;
    };
    auto noRule = guarding();
    noRule.usage.limit.reset();
    auto bare = guarding();
    bare.budget->today.reset();
    bare.usage.hiddenUsage.reset();
    const Case cases[] = {
        {"off", off(), {"Off", "Guard is off", "Stepped in 4 times"}, {"This month", "Paused", "Check for updates?"}},
        {"idle", idle(), {"Idle · not a metered network", "This month", "No traffic yet"}, {"Paused", "Pixel 8"}},
        {"consent",
         warning(),
         {"Check for updates?", "Couldn't read per-app traffic just now — retrying"},
         {"Version 1.3 is available", "firefox", "No traffic yet"}},
        {"no rule", noRule, {"Last 1min", "firefox"}, {"limit 75.0 MB"}},
        {"bare", bare, {"6.38 GB left · 12d to reset"}, {"5 more apps · 3.1 MB", "Today"}},
    };
    // Each after the fullest of all, and in the end that again.
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        open(everything());
        show(c.model);
        for (const auto& text : c.there) EXPECT_THAT(texts(), Contains(text));
        for (const auto& text : c.missing) EXPECT_THAT(texts(), Not(Contains(text)));
    }
    show(everything());
    expectInOrder({"Guarding", "Version 1.3 is available", "This month", "firefox", "Paused", "Quit Quellon"});
}

TEST_F(MenuContentTest, sectionsStandUnderDividers)
{
    const std::pair<const char*, MenuPanelModel> cases[] = {
        {"off", off()}, {"guarding", guarding()}, {"everything", everything()}, {"warning", warning()}};
    for (const auto& [name, model] : cases) {
        SCOPED_TRACE(name);
        open(model);
        int dividers = 0;
        for (QWidget* const each : panel.findChildren<QWidget*>()) {
            dividers += each->isVisible() && each->inherits("quellon::Divider") ? 1 : 0;
        }
        EXPECT_EQ(dividers, static_cast<int>(model.sections().size()) - 1);
    }
}

TEST_F(MenuContentTest, tints)
{
    auto model = everything();
    open(model);
    const Theme& theme = Theme::light();
    EXPECT_EQ(panel.findChild<StatusDot*>()->colour(), theme.good);
    EXPECT_EQ(label("91.3 MB")->tint(), Tint::red);
    EXPECT_EQ(label("31.8 MB")->tint(), Tint::secondary);
    EXPECT_EQ(label("limit 75.0 MB")->tint(), Tint::secondary);
    EXPECT_EQ(label("firefox")->tint(), Tint::primary);
    EXPECT_EQ(label("firefox 88.1 MB")->tint(), Tint::primary);
    EXPECT_EQ(label("of 75.0 MB")->tint(), Tint::secondary);
    EXPECT_EQ(bar("firefox")->tint(), Tint::red);
    EXPECT_EQ(bar("apt")->tint(), Tint::green);
    EXPECT_EQ(bar("This month")->tint(), Tint::red);
    EXPECT_DOUBLE_EQ(bar("This month")->fraction(), 0.93);
    using Run = TextRuns::Run;
    EXPECT_THAT(runs("0.70 GB left · 12d to reset · runs out Mar 20")->runs(),
                ElementsAre(Run{QStringLiteral("0.70 GB left · 12d to reset"), Tint::secondary},
                            Run{QStringLiteral("·"), Tint::secondary},
                            Run{QStringLiteral("runs out Mar 20"), Tint::red}));
    EXPECT_THAT(runs("Today 120.0 MB / 59.7 MB · over today's pace")->runs(),
                ElementsAre(Run{QStringLiteral("Today"), Tint::orange, true},
                            Run{QStringLiteral("120.0 MB / 59.7 MB"), Tint::orange},
                            Run{QStringLiteral("·"), Tint::orange},
                            Run{QStringLiteral("over today's pace"), Tint::orange}));
    EXPECT_EQ(runs("at least — 2 gap(s) couldn't be measured")->runs()[0].tint, Tint::orange);
    ASSERT_EQ(symbols("arrow.down.circle").size(), 1U);
    EXPECT_EQ(symbols("arrow.down.circle")[0]->tint(), Tint::blue);
    ASSERT_EQ(symbols("pause.circle.fill").size(), 2U);
    EXPECT_EQ(symbols("pause.circle.fill")[0]->tint(), Tint::orange);
    EXPECT_EQ(symbols("chevron.down").size(), 1U);
    EXPECT_EQ(symbols("chevron.right").size(), 2U);
    model.header.tint = Tint::orange;
    show(model);
    EXPECT_EQ(panel.findChild<StatusDot*>()->colour(), theme.warning);
    show(warning());
    ASSERT_EQ(symbols("exclamationmark.triangle.fill").size(), 1U);
    EXPECT_EQ(symbols("exclamationmark.triangle.fill")[0]->tint(), Tint::orange);
}

TEST_F(MenuContentTest, clicks)
{
    struct Case {
        const char* button;
        MenuPanelModel model;
        PanelAction action;
    };
    auto steps = everything();
    steps.tetherHint = tetherHint(true);
    const Case cases[] = {
        {"Guard", guarding(), {Kind::stop, {}}},
        {"Guard", off(), {Kind::start, {}}},
        {"How to fix", everything(), {Kind::showTetherSteps, {}}},
        {"Open Network settings", steps, {Kind::openNetworkSettings, {}}},
        {"Don't show again", everything(), {Kind::dismissTetherHint, {}}},
        {"Allow daily update checks", warning(), {Kind::allowUpdateChecks, {}}},
        {"Decline update checks", warning(), {Kind::declineUpdateChecks, {}}},
        {"Open download page", everything(), {Kind::openDownloadPage, "https://example.org/d"}},
        {"Dismiss update notice", everything(), {Kind::dismissUpdate, {}}},
        {"Collapse firefox", everything(), {Kind::toggleRow, "firefox"}},
        {"Explain apt", everything(), {Kind::toggleRow, "apt"}},
        {"Open details for firefox", everything(), {Kind::openDetails, "firefox"}},
        {"Resume all", everything(), {Kind::resumeAll, {}}},
        {"Resume", everything(), {Kind::resume, "cloud-sync-5.0"}},
        {"Open settings", everything(), {Kind::openSettings, {}}},
        {"Quit Quellon", everything(), {Kind::quit, {}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.button);
        open(c.model);
        QAbstractButton* const found = button(c.button);
        ASSERT_NE(found, nullptr);
        for (const int way : {0, 1, 2}) {
            acted.clear();
            if (way == 0) {
                sendMouse(*found, QEvent::MouseButtonPress, found->rect().center());
                sendMouse(*found, QEvent::MouseButtonRelease, found->rect().center());
            } else {
                found->setFocus(Qt::TabFocusReason);
                press(*found, way == 1 ? Qt::Key_Space : Qt::Key_Return);
            }
            EXPECT_THAT(acted, ElementsAre(c.action)) << "way " << way;
        }
    }
}

TEST_F(MenuContentTest, theSecondOfTwoPausedIsItself)
{
    open(everything());
    const auto both = buttons("Resume");
    ASSERT_EQ(both.size(), 2U);
    both[1]->click();
    EXPECT_THAT(acted, ElementsAre(PanelAction{Kind::resume, "Steam-5.0"}));
    EXPECT_EQ(both[1]->accessibleDescription(), QStringLiteral("Steam"));
}

TEST_F(MenuContentTest, theSwitchShowsWhatItIsTold)
{
    open(guarding());
    QAbstractButton* const toggle = button("Guard");
    ASSERT_NE(toggle, nullptr);
    EXPECT_TRUE(toggle->isChecked());
    toggle->click();
    EXPECT_TRUE(toggle->isChecked()) << "the guard has not stopped yet";
    show(off());
    EXPECT_FALSE(toggle->isChecked());
}

TEST_F(MenuContentTest, aPressMeansWhatStoodThereThroughout)
{
    open(everything());
    QAbstractButton* const resume = buttons("Resume")[0];
    sendMouse(*resume, QEvent::MouseButtonPress, resume->rect().center());
    auto next = everything();
    next.paused = {paused("another")};
    show(next);
    sendMouse(*resume, QEvent::MouseButtonRelease, resume->rect().center());
    EXPECT_THAT(acted, IsEmpty());
    QAbstractButton* const now = button("Resume");
    now->click();
    EXPECT_THAT(acted, ElementsAre(PanelAction{Kind::resume, "another-5.0"}));
    acted.clear();
    QAbstractButton* const toggle = button("Guard");
    sendMouse(*toggle, QEvent::MouseButtonPress, toggle->rect().center());
    show(off());
    sendMouse(*toggle, QEvent::MouseButtonRelease, toggle->rect().center());
    EXPECT_THAT(acted, IsEmpty()) << "stopping was meant, not starting";
}

TEST_F(MenuContentTest, anEqualModelPaintsNothing)
{
    open(everything());
    PaintCounter painted{panel};
    show(everything());
    EXPECT_EQ(painted.count, 0);
    auto model = everything();
    model.usage.rows[1].amount = "32.0 MB";
    show(model);
    EXPECT_GT(painted.count, 0) << "the counter counts";
}

TEST_F(MenuContentTest, oneChangedRowLeavesTheOthersAlone)
{
    open(guarding());
    const auto rows = panel.findChildren<UsageRowView*>();
    ASSERT_EQ(rows.size(), 3);
    PaintCounter first{*rows[0]};
    PaintCounter second{*rows[1]};
    PaintCounter third{*rows[2]};
    PaintCounter header{*panel.findChild<HeaderView*>()};
    auto model = guarding();
    model.usage.rows[1].amount = "999.9 MB";
    model.usage.rows[1].fraction = 1.0;
    show(model);
    EXPECT_EQ(first.count, 0);
    EXPECT_GT(second.count, 0);
    EXPECT_EQ(third.count, 0);
    EXPECT_EQ(header.count, 0);
}

TEST_F(MenuContentTest, rowsFollowTheirApplications)
{
    open(guarding());
    button("Explain syncthing")->setFocus(Qt::TabFocusReason);
    auto model = guarding();
    std::swap(model.usage.rows[0], model.usage.rows[2]);
    std::swap(model.usage.rows[1], model.usage.rows[2]);
    show(model);
    expectInOrder({"apt", "firefox", "syncthing"});
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(nameOf(*QApplication::focusWidget()), "Explain syncthing");
    PaintCounter painted{panel};
    show(model);
    EXPECT_EQ(painted.count, 0);
    // Another application takes a place, and the one with the keyboard stays.
    model.usage.rows = {usageRow("curl", "90.0 MB", 1.0), usageRow("syncthing", "31.8 MB", 0.424)};
    show(model);
    expectInOrder({"curl", "syncthing"});
    EXPECT_THAT(texts(), Not(Contains("apt")));
    EXPECT_EQ(nameOf(*QApplication::focusWidget()), "Explain syncthing");
    press(*QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_THAT(acted, ElementsAre(PanelAction{Kind::toggleRow, "syncthing"}));
}

TEST_F(MenuContentTest, rowsAreUsedAgain)
{
    open(guarding());
    for (int i = 0; i < 200; ++i) {
        auto model = guarding();
        model.usage.rows.clear();
        for (int k = 0; k < i % 7; ++k) model.usage.rows.push_back(usageRow(fmt::format("app{}", i + k), "1 MB", 0.1));
        for (int k = 0; k < i % 4; ++k) model.paused.push_back(paused(fmt::format("app{}", i / 3 + k)));
        show(model);
        std::vector<std::string> wanted;
        for (const auto& row : model.usage.rows) wanted.push_back(row.name);
        for (const auto& row : model.paused) wanted.push_back(row.name);
        expectInOrder(wanted);
    }
    EXPECT_LE(panel.findChildren<UsageRowView*>().size(), 6);
}

TEST_F(MenuContentTest, aRowOpensAndClosesInItsPlace)
{
    auto model = guarding();
    open(model);
    button("Explain syncthing")->setFocus(Qt::TabFocusReason);
    expand(model.usage.rows[1], "Keeps folders alike.");
    show(model);
    expectInOrder({"syncthing", "31.8 MB", "Keeps folders alike.", "Details…", "apt"});
    EXPECT_EQ(nameOf(*QApplication::focusWidget()), "Collapse syncthing");
    show(guarding());
    EXPECT_THAT(texts(), Not(Contains("Details…")));
    EXPECT_EQ(nameOf(*QApplication::focusWidget()), "Explain syncthing");
}

TEST_F(MenuContentTest, longNamesAreCutInTheMiddle)
{
    const std::string name = std::string(60, 'a') + "-" + std::string(60, 'z');
    auto model = everything();
    model.header.detail = name;
    model.usage.rows[1].name = name;
    model.paused[0].name = name;
    model.liveness.texts[1].text = name + " 88.1 MB";
    open(model);
    EXPECT_EQ(panel.width(), 340);
    int cut = 0;
    for (TextLabel* const each : panel.findChildren<TextLabel*>()) {
        if (!each->isVisible() || !each->text().contains(toQString(name))) continue;
        ++cut;
        const std::string shown = each->shownText().toStdString();
        EXPECT_EQ(shown.find("aaa"), 0U) << shown;
        EXPECT_NE(shown.find("…"), std::string::npos) << shown;
        EXPECT_GT(each->width(), 60);
        EXPECT_LE(each->mapTo(&panel, QPoint{each->width(), 0}).x(), 340 - 14);
    }
    EXPECT_EQ(cut, 4);
    EXPECT_EQ(label("31.8 MB")->shownText(), label("31.8 MB")->text()) << "amounts are never cut";
    EXPECT_EQ(label("of 75.0 MB")->shownText(), label("of 75.0 MB")->text());
}

TEST_F(MenuContentTest, textIsNeverMarkup)
{
    auto model = everything();
    model.header.detail = model.usage.rows[0].name = model.paused[0].name = "<b>bold</b><img src=x>";
    model.usage.rows[0].details->whatItIs = model.header.detail;
    open(model);
    for (QLabel* const each : panel.findChildren<QLabel*>()) EXPECT_EQ(each->textFormat(), Qt::PlainText);
    EXPECT_THAT(texts(), Contains("<b>bold</b><img src=x>"));
    EXPECT_EQ(label("<b>bold</b><img src=x>")->shownText(), QStringLiteral("<b>bold</b><img src=x>"));
}

TEST_F(MenuContentTest, toolTipsOfRows)
{
    auto model = guarding();
    const std::string name = "<b>an application</b> with a name that does not fit in one line & more";
    model.usage.rows[0] = usageRow(name, "61.3 MB", 0.8);
    model.usage.rows[0].chronicBadge = "🐌";
    model.usage.rows[0].chronicHelp = "Slow but steady — high usage over the long window";
    open(model);
    const auto toolTipAt = [](QAbstractButton& row, const QPoint& at) {
        QHelpEvent help{QEvent::ToolTip, at, row.mapToGlobal(at)};
        QApplication::sendEvent(&row, &help);
        return help.isAccepted() ? QToolTip::text() : QString{};
    };
    QAbstractButton* const first = button("Explain " + name);
    ASSERT_NE(first, nullptr);
    TextLabel* const badge = label("🐌");
    ASSERT_NE(badge, nullptr);
    EXPECT_EQ(toolTipAt(*first, badge->mapTo(first, badge->rect().center())),
              toQString("Slow but steady — high usage over the long window"));
    EXPECT_EQ(toolTipAt(*first, QPoint{30, 10}), toolTipOf(toQString(name)));
    EXPECT_EQ(label("apt")->shownText(), label("apt")->text());
    QAbstractButton* const other = button("Explain apt");
    EXPECT_EQ(toolTipAt(*other, QPoint{30, 10}), QString{}) << "all of it can be seen";
    QToolTip::hideText();
}

TEST_F(MenuContentTest, ampersandsAreShown)
{
    auto model = everything();
    model.profiles = profiles("Work & travel");
    model.footer[0].title = "This & that";
    open(model);
    EXPECT_THAT(texts(), Contains("Work & travel"));
    EXPECT_THAT(texts(), Contains("This & that"));
}

} // namespace
} // namespace quellon
