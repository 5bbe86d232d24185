#include "QuellonUI/OverviewWindow.h"

#include "../QuellonTerminal/Overviews.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QPushButton>

#include <optional>
#include <string>
#include <vector>

namespace quellon {
namespace {

using Button = Notice::Button;

ControlsModel::Notice askedNotice()
{
    return {NotificationStyle::persistent,
            "apt keeps reaching for the hotspot",
            {"Asked 4 times in the last hour · 2.0 MB in the last minute",
             "It is set to always block, so it is asked about every time it moves. Let this transfer finish, or stop "
             "asking until tomorrow.",
             "12% of your plan used · 26.40 GB left"},
            {{"Allow until done"}, {"Stop asking today"}, {"Stop it", true}, {"Show details"}}};
}

ControlsModel::Notice pausedNotice()
{
    return {NotificationStyle::persistent,
            "cloud-sync was paused",
            {"61.3 MB in 1min", "It is frozen, not closed — resume and it picks up where it left off."},
            {{"Resume"}, {"Resume + snooze"}}};
}

ControlsModel controlled(std::size_t paused = 2)
{
    ControlsModel model;
    model.question = askedNotice();
    for (std::size_t i = 0; i < paused; ++i) {
        const std::string app = i == 0 ? "cloud-sync" : fmt::format("app{}", i);
        model.paused.push_back({app, "3 min ago", i == 0, app + "-5.0"});
    }
    return model;
}

void letItBeDrawn()
{
    for (int i = 0; i < 5; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

/// A window, and what it reports.
class WindowControlsTest : public testing::Test {
protected:
    OverviewWindow window;
    std::vector<std::string> reported;

    WindowControlsTest()
    {
        QObject::connect(&window, &OverviewWindow::commanded, &window, [this](ControlCommand command) {
            reported.push_back(fmt::format("command {}", static_cast<int>(command)));
        });
        QObject::connect(&window, &OverviewWindow::answered, &window,
                         [this](std::size_t button) { reported.push_back(fmt::format("answer {}", button)); });
        QObject::connect(&window, &OverviewWindow::resumed, &window,
                         [this](const std::string& id) { reported.push_back("resume " + id); });
        window.setModel(overview());
        window.show();
    }

    void show(const ControlsModel& model)
    {
        window.setControls(model);
        letItBeDrawn();
    }
    /// Whether this text stands anywhere, in whole.
    bool shows(const std::string& text) const
    {
        for (const QLabel* const each : window.findChildren<QLabel*>()) {
            if (each->isVisible() && each->text().split(QLatin1Char{'\n'}).contains(toQString(text))) return true;
        }
        return false;
    }
    /// The texts of the visible buttons, from the top.
    std::vector<std::string> buttons() const
    {
        std::vector<std::string> result;
        for (const QPushButton* const each : window.findChildren<QPushButton*>()) {
            if (each->isVisible()) result.push_back(each->text().toStdString());
        }
        return result;
    }
    /// Clicks the visible button with this text or accessible name.
    void click(const char* name)
    {
        for (QPushButton* const each : window.findChildren<QPushButton*>()) {
            const auto wanted = QString::fromUtf8(name);
            if (!each->isVisible() || (each->text() != wanted && each->accessibleName() != wanted)) continue;
            each->click();
            return;
        }
        ADD_FAILURE() << "no button " << name;
    }
};

TEST_F(WindowControlsTest, nothingIsThereWithoutANotification)
{
    show({});
    EXPECT_TRUE(buttons().empty());
    EXPECT_FALSE(shows("Paused"));
}

TEST_F(WindowControlsTest, aQuestion)
{
    show(controlled(0));
    EXPECT_TRUE(shows(askedNotice().title));
    for (const std::string& each : askedNotice().text) EXPECT_TRUE(shows(each)) << each;
    EXPECT_EQ(buttons(),
              (std::vector<std::string>{"✕", "Allow until done", "Stop asking today", "Stop it", "Show details"}));
    click("Stop it");
    click("Allow until done");
    click("Dismiss");
    EXPECT_EQ(reported,
              (std::vector<std::string>{"answer 2", "answer 0",
                                        fmt::format("command {}", static_cast<int>(ControlCommand::dismiss))}));
    auto next = controlled(0);
    next.question = pausedNotice();
    next.question->serial = 2;
    next.questionPlace = "1 of 2";
    show(next);
    EXPECT_TRUE(shows("cloud-sync was paused"));
    EXPECT_TRUE(shows("1 of 2"));
    EXPECT_FALSE(shows(askedNotice().title));
    EXPECT_EQ(buttons(), (std::vector<std::string>{"✕", "Resume", "Resume + snooze"}));
    show({});
    EXPECT_TRUE(buttons().empty());
    EXPECT_FALSE(shows("1 of 2"));
}

TEST_F(WindowControlsTest, aNoteGoesByItself)
{
    ControlsModel model;
    model.note = ControlsModel::Notice{NotificationStyle::transient, "radio is using a lot of data", {"now"}, {}};
    show(model);
    EXPECT_TRUE(shows("radio is using a lot of data"));
    EXPECT_TRUE(buttons().empty());
    show({});
    EXPECT_FALSE(shows("radio is using a lot of data"));
}

TEST_F(WindowControlsTest, whatIsPaused)
{
    auto model = controlled(2);
    model.question.reset();
    show(model);
    for (const char* text : {"Paused", "cloud-sync", "app1", "3 min ago"}) EXPECT_TRUE(shows(text)) << text;
    EXPECT_EQ(buttons(), (std::vector<std::string>{"Resume all", "Resume", "Resume"}));
    click("Resume app1");
    click("Resume all");
    EXPECT_EQ(reported,
              (std::vector<std::string>{"resume app1-5.0",
                                        fmt::format("command {}", static_cast<int>(ControlCommand::resumeAll))}));
    model.paused.erase(model.paused.begin());
    show(model);
    EXPECT_FALSE(shows("cloud-sync"));
    reported.clear();
    click("Resume");
    EXPECT_EQ(reported, (std::vector<std::string>{"resume app1-5.0"}));
}

TEST_F(WindowControlsTest, ofManyTheFirstHaveALine)
{
    struct Case {
        std::size_t paused;
        std::size_t lines;
        const char* more;
    };
    for (const Case& c :
         {Case{1, 1, ""}, Case{4, 4, ""}, Case{5, 4, "… 1 more"}, Case{300, 4, "… 296 more"}, Case{2, 2, ""}}) {
        SCOPED_TRACE(c.paused);
        auto model = controlled(c.paused);
        model.question.reset();
        show(model);
        EXPECT_EQ(buttons().size(), c.lines + 1);
        for (const std::string more : {"… 1 more", "… 296 more"}) EXPECT_EQ(shows(more), more == c.more) << more;
    }
}

TEST_F(WindowControlsTest, everyTextHasRoom)
{
    auto model = controlled(300);
    model.note = ControlsModel::Notice{NotificationStyle::transient, "radio is using a lot of data", {"now"}, {}};
    model.questionPlace = "1 of 3";
    show(model);
    window.resize(window.minimumSizeHint());
    letItBeDrawn();
    for (const QPushButton* const each : window.findChildren<QPushButton*>()) {
        if (!each->isVisible()) continue;
        const int needed = each->fontMetrics().horizontalAdvance(each->text());
        EXPECT_GE(each->width(), needed) << each->text().toStdString();
        EXPECT_GE(each->height(), each->fontMetrics().height()) << each->text().toStdString();
    }
    const int width = window.width();
    EXPECT_LE(width, 380);
    model.question->title = model.question->text[0] = model.paused[0].app = std::string(400, 'w');
    show(model);
    EXPECT_LE(window.minimumSizeHint().width(), width) << "no name makes it wider";
}

TEST_F(WindowControlsTest, textIsNeverMarkup)
{
    auto model = controlled(1);
    model.question->title = model.paused[0].app = "<b>bold</b><img src=x>";
    model.question->text = {"<b>bold</b>"};
    show(model);
    for (const QLabel* each : window.findChildren<QLabel*>()) EXPECT_EQ(each->textFormat(), Qt::PlainText);
}

TEST_F(WindowControlsTest, theSelectedRowIsTheCurrentOne)
{
    QListView* usage = nullptr;
    for (QListView* const each : window.findChildren<QListView*>()) {
        if (each->accessibleName() == QStringLiteral("Usage")) usage = each;
    }
    ASSERT_NE(usage, nullptr);
    ControlsModel model;
    model.selectedRow = 1;
    show(model);
    EXPECT_EQ(usage->currentIndex().row(), 1);
    model.selectedRow = 400;
    show(model);
    EXPECT_FALSE(usage->currentIndex().isValid());
}

TEST_F(WindowControlsTest, accessibilityTree)
{
    show(controlled(1));
    std::vector<std::string> names;
    for (QPushButton* const each : window.findChildren<QPushButton*>()) {
        if (!each->isVisible()) continue;
        QAccessibleInterface* const one = QAccessible::queryAccessibleInterface(each);
        ASSERT_NE(one, nullptr);
        EXPECT_EQ(one->role(), QAccessible::Button);
        EXPECT_EQ(each->focusPolicy(), Qt::TabFocus) << each->text().toStdString();
        names.push_back(one->text(QAccessible::Name).toStdString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Dismiss", "Allow until done", "Stop asking today", "Stop it",
                                               "Show details", "Resume all", "Resume cloud-sync"}));
}

/// What the README shows beside the overview: a runaway that was frozen.
OverviewModel frozenPicture()
{
    OverviewModel model = overview(0, 0);
    model.counters = "↓ 402.1 MB  ↑ 9.4 MB";
    model.rows = {{"cloud-sync", "61.3 MB", "61.3 MB", 0.817, "82%"}, {"firefox", "9.8 MB", "9.8 MB", 0.131, "13%"}};
    const auto add = [&model](const char* time, GuardEvent::Kind kind, const char* message) {
        UUID id;
        id.bytes[0] = static_cast<std::uint8_t>(model.log.size());
        model.log.push_back({id, time, kind, message});
    };
    add("14:05:25", GuardEvent::Kind::enforced, "cloud-sync used 61.3 MB in 1min → 暂停（可恢复）");
    add("14:03:10", GuardEvent::Kind::info, "📶 wlan0 · gateway 172.20.10.1 (hotspot range)");
    return model;
}

TEST(ControlsPictures, lightAndDark)
{
    // With a folder in QUELLON_PICTURES, the pictures are left there.
    const QString folder = qEnvironmentVariable("QUELLON_PICTURES");
    for (const bool dark : {false, true}) {
        QApplication::setPalette(QPalette{dark ? QColor{0x20, 0x20, 0x20} : QColor{0xef, 0xef, 0xef}});
        OverviewWindow window;
        window.setModel(frozenPicture());
        auto model = controlled(1);
        model.question = pausedNotice();
        model.paused[0].since = "just now";
        window.setControls(model);
        window.show();
        letItBeDrawn();
        QImage image{window.size() * 2, QImage::Format_RGB32};
        image.setDevicePixelRatio(2);
        window.render(&image);
        const auto& theme = Theme::of(QApplication::palette());
        int accent = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) accent += image.pixelColor(x, y) == theme.accent ? 1 : 0;
        }
        EXPECT_GT(accent, 10000) << "the primary button";
        if (!folder.isEmpty()) {
            EXPECT_TRUE(image.save(QDir{folder}.filePath(dark ? QStringLiteral("window-asks-dark.png")
                                                              : QStringLiteral("window-asks-light.png"))));
        }
    }
}

} // namespace
} // namespace quellon
