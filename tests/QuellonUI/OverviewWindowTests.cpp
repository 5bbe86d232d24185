#include "QuellonUI/OverviewWindow.h"

#include "../QuellonTerminal/Overviews.h"
#include "QuellonUI/Symbols.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>

#include <optional>
#include <string>

namespace quellon {
namespace {

/// Counts what is painted in a window.
class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QWidget& window)
    {
        window.installEventFilter(this);
        for (QWidget* const each : window.findChildren<QWidget*>()) each->installEventFilter(this);
    }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) ++count;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

void settle()
{
    for (int i = 0; i < 5; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

QPalette surroundings(bool dark)
{
    return QPalette{dark ? QColor{0x20, 0x20, 0x20} : QColor{0xef, 0xef, 0xef}};
}

class OverviewWindowTest : public testing::Test {
protected:
    void SetUp() override { QApplication::setPalette(surroundings(false)); }
    OverviewWindow window;

    QList<QLabel*> labels() const { return window.findChildren<QLabel*>(); }
    /// The label that shows this text; null when none does.
    QLabel* label(const char* text) const
    {
        for (QLabel* const each : labels()) {
            if (each->text() == QString::fromUtf8(text) && each->isVisible()) return each;
        }
        return nullptr;
    }
    QListView* list(const char* name) const
    {
        for (QListView* const each : window.findChildren<QListView*>()) {
            if (each->accessibleName() == QString::fromUtf8(name)) return each;
        }
        return nullptr;
    }
    static std::string text(const QListView& list, int row)
    {
        return list.model()->index(row, 0).data(Qt::AccessibleTextRole).toString().toStdString();
    }
};

TEST_F(OverviewWindowTest, texts)
{
    window.setModel(overview());
    window.show();
    settle();
    for (const char* text : {"Guarding", "wlan0 · gateway 172.20.10.1 (hotspot range)", "Wi-Fi",
                             "↓ 812.4 MB  ↑ 20.1 MB", "Usage", "1min window", "Activity"}) {
        EXPECT_NE(label(text), nullptr) << text;
    }
    EXPECT_EQ(label("No traffic yet"), nullptr);
    ASSERT_EQ(list("Usage")->model()->rowCount(), 3);
    EXPECT_EQ(text(*list("Usage"), 0), "cloud-sync: 400.5 MB, 50%, last minute 12.0 MB");
    EXPECT_EQ(text(*list("Usage"), 2), "云盘同步助手: 398.5 MB, 25%, last minute 12.0 MB");
    ASSERT_EQ(list("Activity")->model()->rowCount(), 4);
    EXPECT_EQ(text(*list("Activity"), 1), "10:00:00 warning: nettop 超时未返回，本轮采样已跳过");
}

TEST_F(OverviewWindowTest, textIsNeverMarkup)
{
    auto model = overview(1, 1);
    model.detail = "<b>bold</b><img src=x>";
    model.warning = model.hint = model.detail;
    window.setModel(model);
    window.show();
    for (const QLabel* each : labels()) EXPECT_EQ(each->textFormat(), Qt::PlainText) << each->text().toStdString();
}

TEST_F(OverviewWindowTest, whatIsAbsentTakesNoRoom)
{
    auto model = overview(0, 0);
    model.counters.reset();
    window.setModel(model);
    window.show();
    settle();
    EXPECT_NE(label("No traffic yet"), nullptr);
    EXPECT_EQ(label("Wi-Fi"), nullptr);
    EXPECT_FALSE(list("Usage")->isVisible());
    model.warning = "Couldn't read per-app traffic at 10:00:00 — retrying";
    model.hint = "en7 is ready, but macOS is still using Wi-Fi.";
    window.setModel(model);
    settle();
    EXPECT_NE(label(model.warning->c_str()), nullptr);
    EXPECT_NE(label(model.hint->c_str()), nullptr);
}

TEST_F(OverviewWindowTest, anEqualModelPaintsNothing)
{
    window.setModel(overview());
    window.show();
    settle();
    PaintCounter painted{window};
    window.setModel(overview());
    settle();
    EXPECT_EQ(painted.count, 0);
    auto model = overview();
    model.rows[1].bytes = "999.9 MB";
    window.setModel(model);
    settle();
    EXPECT_GT(painted.count, 0) << "the counter counts";
}

TEST_F(OverviewWindowTest, oneChangedRowLeavesTheRestAlone)
{
    window.setModel(overview());
    window.show();
    settle();
    PaintCounter painted{*list("Activity")};
    auto model = overview();
    model.rows[1].bytes = "999.9 MB";
    window.setModel(model);
    settle();
    EXPECT_EQ(painted.count, 0);
}

TEST_F(OverviewWindowTest, listsGrowAndShrink)
{
    window.show();
    for (const std::size_t count : {std::size_t{400}, std::size_t{0}, std::size_t{7}, std::size_t{1}}) {
        window.setModel(overview(count, count / 2));
        settle();
        EXPECT_EQ(list("Usage")->model()->rowCount(), static_cast<int>(count));
        EXPECT_EQ(list("Activity")->model()->rowCount(), static_cast<int>(count / 2));
    }
}

TEST_F(OverviewWindowTest, dotByTone)
{
    const auto& theme = Theme::of(surroundings(false));
    auto model = overview();
    for (const auto tone :
         {MenuPresentation::Tone::off, MenuPresentation::Tone::active, MenuPresentation::Tone::standby}) {
        model.tone = tone;
        window.setModel(model);
        EXPECT_EQ(window.findChild<StatusDot*>()->colour(), theme.tone(tone));
    }
}

TEST_F(OverviewWindowTest, keyboard)
{
    window.setModel(overview(20, 20));
    window.show();
    window.activateWindow();
    settle();
    EXPECT_EQ(list("Usage")->focusPolicy() & Qt::TabFocus, Qt::TabFocus);
    EXPECT_EQ(list("Activity")->focusPolicy() & Qt::TabFocus, Qt::TabFocus);
    QKeyEvent quit{QEvent::ShortcutOverride, Qt::Key_Q, Qt::ControlModifier};
    bool found = false;
    for (QShortcut* const each : window.findChildren<QShortcut*>()) {
        if (each->key() != QKeySequence{Qt::CTRL | Qt::Key_Q}) continue;
        found = true;
        Q_EMIT each->activated();
    }
    EXPECT_TRUE(found);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(OverviewWindowTest, accessibilityTree)
{
    window.setModel(overview());
    window.show();
    settle();
    QAccessibleInterface* const usage = QAccessible::queryAccessibleInterface(list("Usage"));
    ASSERT_NE(usage, nullptr);
    EXPECT_EQ(usage->role(), QAccessible::List);
    EXPECT_EQ(usage->text(QAccessible::Name).toStdString(), "Usage");
    ASSERT_EQ(usage->childCount(), 3);
    EXPECT_EQ(usage->child(1)->text(QAccessible::Name).toStdString(), "firefox: 399.5 MB, 33%, last minute 12.0 MB");
}

TEST_F(OverviewWindowTest, followsThePalette)
{
    window.setModel(overview());
    window.show();
    settle();
    const QColor light = window.grab().toImage().pixelColor(2, 2);
    QApplication::setPalette(surroundings(true));
    settle();
    const QColor dark = window.grab().toImage().pixelColor(2, 2);
    EXPECT_GT(light.lightness(), 200);
    EXPECT_LT(dark.lightness(), 60);
}

TEST(Symbols, lettersAlwaysStay)
{
    const QString text = QStringLiteral("nettop 超时未返回 · a\u2026b \uFFFD");
    EXPECT_EQ(withDrawableSymbols(text, Fonts::body()), text);
}

TEST(Symbols, whatNoFontHasIsLeftOut)
{
    // A font of nothing but Latin letters, and no other to fall back on.
    QFont font = Fonts::body();
    font.setStyleStrategy(QFont::NoFontMerging);
    EXPECT_EQ(withDrawableSymbols(QStringLiteral("📶 wlan0 © 超"), font), QStringLiteral("wlan0 © 超"));
}

/// What the README shows: a hotspot, a runaway, and what else wants something.
OverviewModel picture()
{
    OverviewModel model = overview(0, 0);
    model.windowHeading = "1min window";
    model.counters = "↓ 384.6 MB  ↑ 9.2 MB";
    model.rows = {{"cloud-sync", "61.3 MB", "61.3 MB", 0.817, "82%"},
                  {"firefox", "9.8 MB", "9.8 MB", 0.131, "13%"},
                  {"unattended-upgrade", "3.1 MB", "3.1 MB", 0.041, "4%"},
                  {"thunderbird", "0.6 MB", "0.6 MB", 0.008, "1%"},
                  {"gnome-software", "0.2 MB", "0.2 MB", 0.003, "<1%"}};
    const auto add = [&model](const char* time, GuardEvent::Kind kind, const char* message) {
        UUID id;
        id.bytes[0] = static_cast<std::uint8_t>(model.log.size());
        model.log.push_back({id, time, kind, message});
    };
    add("14:03:10", GuardEvent::Kind::info, "📶 wlan0 · gateway 172.20.10.1 (hotspot range)");
    add("13:58:42", GuardEvent::Kind::info, "🏠 eth0 · gateway 192.168.1.1 · not metered");
    add("13:58:42", GuardEvent::Kind::info, "Quellon Pro started · 2 rules");
    return model;
}

/// The window at so many device pixels for one of its own.
QImage grabbed(QWidget& widget, double ratio)
{
    QImage image{widget.size() * ratio, QImage::Format_RGB32};
    image.setDevicePixelRatio(ratio);
    widget.render(&image);
    return image;
}

TEST(OverviewPictures, lightAndDark)
{
    // With a folder in QUELLON_PICTURES, the pictures are left there.
    const QString folder = qEnvironmentVariable("QUELLON_PICTURES");
    for (const bool dark : {false, true}) {
        QApplication::setPalette(surroundings(dark));
        OverviewWindow window;
        window.setModel(picture());
        window.show();
        settle();
        for (const int ratio : {1, 2}) {
            const QImage image = grabbed(window, ratio);
            const auto& theme = Theme::of(surroundings(dark));
            EXPECT_EQ(image.pixelColor(3, 3), theme.background);
            int accent = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) accent += image.pixelColor(x, y) == theme.accent ? 1 : 0;
            }
            EXPECT_GT(accent, 600 * ratio * ratio) << "the bars";
            if (folder.isEmpty()) continue;
            const std::string name = fmt::format("window-{}{}.png", dark ? "dark" : "light", ratio == 2 ? "" : "-1x");
            EXPECT_TRUE(image.save(QDir{folder}.filePath(toQString(name))));
        }
    }
}

} // namespace
} // namespace quellon
