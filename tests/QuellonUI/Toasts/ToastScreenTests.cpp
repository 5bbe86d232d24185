#include "QuellonUI/Toasts/ToastScreen.h"

#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"
#include "QuellonUI/Toasts/ClampedText.h"
#include "QuellonUI/Toasts/ToastButton.h"
#include "QuellonUI/Toasts/ToastView.h"
#include "QuellonUI/Toasts/ToastWindow.h"

#include "../PaintCounter.h"
#include "../Until.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <string>
#include <utility>

namespace quellon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum NotificationAction;

void settle()
{
    for (int i = 0; i < 5; ++i) {
        QApplication::sendPostedEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
}

/// What a mouse does.
void clickOn(QWidget& widget)
{
    const QPointF place = widget.rect().center();
    const QPointF global = widget.mapToGlobal(place);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event{type, place, global, Qt::LeftButton, held, Qt::NoModifier};
        QApplication::sendEvent(&widget, &event);
    }
}

class ToastScreenTest : public ::testing::Test {
protected:
    ToastScreenTest()
    {
        QApplication::setPalette(Theme::light().palette());
        QObject::connect(&screen, &ToastScreen::pressed, &screen,
                         [this](std::uint64_t id, std::size_t button) { pressed.emplace_back(id, button); });
        QObject::connect(&screen, &ToastScreen::closed, &screen, [this](std::uint64_t id) { closed.push_back(id); });
        QObject::connect(&screen, &ToastScreen::missed, &screen,
                         [this](const ToastModel& toast) { missed.push_back(toast.id); });
    }
    ~ToastScreenTest() override
    {
        screen.setToasts({});
        settle();
    }

    ToastScreen screen;
    std::vector<std::pair<std::uint64_t, std::size_t>> pressed;
    std::vector<std::uint64_t> closed;
    std::vector<std::uint64_t> missed;

    static ToastModel toast(std::uint64_t id,
                            std::vector<NotificationAction> actions = {snooze, suspend, allowlist, view},
                            NotificationStyle style = NotificationStyle::persistent)
    {
        return ToastModel::of({style,
                               "cloud-sync is using a lot of data",
                               "412.0 MB in 1min · limit 100.0 MB",
                               "43% of your plan used · 1.2 GB left",
                               std::move(actions),
                               {"cloud-sync"}},
                              id);
    }
    static ToastModel saying(std::uint64_t id, std::string title, std::string body)
    {
        return ToastModel::of({NotificationStyle::transient, std::move(title), "", std::move(body), {}, {}}, id);
    }
    void show(const std::vector<ToastModel>& toasts)
    {
        screen.setToasts(toasts);
        settle();
    }
    ToastWindow& window(std::size_t place) { return *screen.windows().at(place); }
    static std::vector<std::string> texts(const QWidget& window)
    {
        std::vector<std::string> result;
        for (const auto* const each : window.findChildren<ClampedText*>()) {
            if (each->isVisible()) result.push_back(each->text().toStdString());
        }
        return result;
    }
    static QList<ToastButton*> buttons(const QWidget& window) { return window.findChildren<ToastButton*>(); }
    static IconButton& closeButton(const QWidget& window) { return *window.findChild<IconButton*>(); }
};

TEST_F(ToastScreenTest, texts)
{
    show({toast(1), saying(2, "only a title", "")});
    EXPECT_THAT(texts(window(0)),
                ElementsAre("cloud-sync is using a lot of data",
                            "412.0 MB in 1min · limit 100.0 MB\n43% of your plan used · 1.2 GB left"));
    EXPECT_THAT(texts(window(1)), ElementsAre("only a title"));
    const auto* const symbol = window(0).findChild<SymbolLabel*>();
    EXPECT_EQ(symbol->name(), "exclamationmark.triangle.fill");
    EXPECT_EQ(symbol->tint(), Tint::orange);
    EXPECT_EQ(window(1).findChild<SymbolLabel*>()->name(), "info.circle.fill");
    EXPECT_EQ(window(1).findChild<SymbolLabel*>()->tint(), Tint::secondary);
}

TEST_F(ToastScreenTest, textIsNeverMarkup)
{
    show({saying(1, "<b>bold</b> & co", "<img src=x>")});
    for (const auto* const each : window(0).findChildren<QLabel*>()) EXPECT_EQ(each->textFormat(), Qt::PlainText);
    EXPECT_EQ(window(0).accessibleName(), QStringLiteral("<b>bold</b> & co"));
}

TEST_F(ToastScreenTest, buttonsAndTheirStyles)
{
    show({toast(1, {terminate, allowOnce, muteToday, view})});
    const auto all = buttons(window(0));
    const char* const titles[] = {"Stop it", "Allow until done", "Stop asking today", "Show details"};
    ASSERT_EQ(all.size(), 4);
    for (qsizetype i = 0; i < 4; ++i) {
        SCOPED_TRACE(titles[i]);
        EXPECT_EQ(all[i]->text(), QString::fromUtf8(titles[i]));
        EXPECT_EQ(all[i]->accessibleName(), QString::fromUtf8(titles[i]));
        EXPECT_EQ(all[i]->styleOf(), (ToastButtonStyle{i == 0, i == 0}));
        EXPECT_GE(all[i]->width(), all[i]->sizeHint().width()) << "nothing is cut off";
    }
    EXPECT_EQ(closeButton(window(0)).accessibleName(), QStringLiteral("Dismiss"));
}

/// The colour of a button's ground beside its text, on the toast's ground.
QColor ground(const ToastButton& button)
{
    const QImage picture = button.window()->grab().toImage();
    const QPoint place = button.mapTo(button.window(), QPoint{5, button.height() / 2});
    return picture.pixelColor(place * picture.devicePixelRatio());
}

TEST_F(ToastScreenTest, colours)
{
    const auto mixed = [](QColor over, double opacity, const QColor& below) {
        QImage pixel{1, 1, QImage::Format_ARGB32};
        pixel.fill(below);
        over.setAlphaF(static_cast<float>(opacity));
        QPainter{&pixel}.fillRect(0, 0, 1, 1, over);
        return pixel.pixelColor(0, 0);
    };
    for (const Theme* const theme : {&Theme::light(), &Theme::dark()}) {
        QApplication::setPalette(theme->palette());
        show({toast(1, {resume, resumeAndSnooze}), toast(2, {terminate, view})});
        EXPECT_EQ(ground(*buttons(window(0))[0]), theme->accentFill);
        EXPECT_EQ(ground(*buttons(window(0))[1]), mixed(Qt::gray, 0.18, theme->background));
        EXPECT_EQ(ground(*buttons(window(1))[0]), mixed(theme->bad, 0.15, theme->background)) << "though primary";
    }
    QApplication::setPalette(Theme::light().palette());
}

TEST_F(ToastScreenTest, presses)
{
    show({toast(7), toast(9)});
    buttons(window(0))[2]->click();
    buttons(window(1))[0]->click();
    EXPECT_THAT(pressed, ElementsAre(std::pair{7U, 2U}, std::pair{9U, 0U}));
    closeButton(window(1)).click();
    EXPECT_THAT(closed, ElementsAre(9U));
    EXPECT_EQ(screen.windows().size(), 2U) << "who hears of it takes them away";
}

TEST_F(ToastScreenTest, aPressThatTakesTheToastAway)
{
    show({toast(7)});
    QObject::connect(&screen, &ToastScreen::pressed, &screen, [this] { screen.setToasts({}); });
    buttons(window(0))[0]->click();
    settle();
    EXPECT_THAT(screen.windows(), IsEmpty());
}

TEST_F(ToastScreenTest, places)
{
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    show({toast(1), toast(2, {}), toast(3)});
    int y = area.top() + 8;
    for (ToastWindow* const each : screen.windows()) {
        EXPECT_EQ(each->width(), 340);
        EXPECT_EQ(each->pos(), QPoint(area.left() + area.width() - 340 - 12, y));
        y += each->height() + 12;
    }
    EXPECT_LT(window(1).height(), window(0).height());

    ToastWindow* const second = &window(1);
    show({toast(2, {}), toast(3)});
    EXPECT_EQ(&window(0), second) << "the same window, moved up";
    EXPECT_EQ(second->y(), area.top() + 8);
    EXPECT_EQ(window(1).y(), area.top() + 8 + second->height() + 12);
}

TEST_F(ToastScreenTest, fourInARow)
{
    show({toast(1), toast(2), toast(3)});
    const std::vector<ToastWindow*> before = screen.windows();
    show({toast(2), toast(3), toast(4)});
    const std::vector<ToastWindow*> after = screen.windows();
    ASSERT_EQ(after.size(), 3U);
    EXPECT_EQ(after[0], before[1]);
    EXPECT_EQ(after[1], before[2]);
    int visible = 0;
    for (const QWidget* const each : QApplication::topLevelWidgets()) {
        if (qobject_cast<const ToastWindow*>(each) != nullptr && each->isVisible()) ++visible;
    }
    EXPECT_EQ(visible, 3);
}

TEST_F(ToastScreenTest, neverTakesTheFocus)
{
    show({toast(1)});
    const auto flags = window(0).windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(window(0).testAttribute(Qt::WA_ShowWithoutActivating));
    QLineEdit other;
    other.show();
    other.activateWindow();
    other.setFocus();
    ASSERT_TRUE(testing::until([&] { return QApplication::focusWidget() == &other; }));
    // Offscreen, the toolkit makes every window that is shown the active one, whatever it asks for.
    if (QGuiApplication::platformName() != QLatin1String{"offscreen"}) show({toast(1), toast(2)});
    clickOn(*buttons(window(0))[0]);
    clickOn(*window(0).findChild<ClampedText*>());
    show({toast(1), saying(2, "another", "")});
    settle();
    EXPECT_EQ(pressed.size(), 1U);
    if (QGuiApplication::platformName() == QLatin1String{"offscreen"}) return;
    EXPECT_EQ(QApplication::activeWindow(), &other);
    EXPECT_EQ(QApplication::focusWidget(), &other);
}

TEST_F(ToastScreenTest, anEqualListPaintsNothing)
{
    show({toast(1), toast(2)});
    PaintCounter painted;
    for (ToastWindow* const each : screen.windows()) painted.watch(*each);
    show({toast(1), toast(2)});
    EXPECT_EQ(painted.count, 0);
    PaintCounter paintedInFirst;
    paintedInFirst.watch(window(0));
    show({toast(1), toast(2), toast(3)});
    EXPECT_EQ(paintedInFirst.count, 0) << "nothing changed in it";
    show({saying(1, "another", ""), toast(2), toast(3)});
    EXPECT_TRUE(testing::until([&] { return paintedInFirst.count > 0; })) << "the counter counts";
}

TEST_F(ToastScreenTest, aThousandTimes)
{
    const auto objects = [] { return QApplication::allWidgets().size(); };
    show({toast(1), toast(2)});
    show({});
    const auto before = objects();
    for (std::uint64_t i = 0; i < 1000; ++i) {
        screen.setToasts({toast(i), toast(i + 1), toast(i + 2)});
        if (i % 50 == 0) settle();
    }
    show({});
    EXPECT_EQ(objects(), before);
}

TEST_F(ToastScreenTest, accessibility)
{
    show({toast(1)});
    QAccessibleInterface* const alert = QAccessible::queryAccessibleInterface(&window(0));
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->role(), QAccessible::AlertMessage);
    EXPECT_EQ(alert->text(QAccessible::Name), QStringLiteral("cloud-sync is using a lot of data"));
    EXPECT_EQ(alert->text(QAccessible::Description),
              QString::fromUtf8("412.0 MB in 1min · limit 100.0 MB\n43% of your plan used · 1.2 GB left"));
    std::vector<std::pair<QAccessible::Role, std::string>> children;
    const auto collect = [&](const auto& self, QAccessibleInterface& parent) -> void {
        for (int i = 0; i < parent.childCount(); ++i) {
            QAccessibleInterface& child = *parent.child(i);
            const auto name = child.text(QAccessible::Name).toStdString();
            if (!name.empty()) children.emplace_back(child.role(), name);
            self(self, child);
        }
    };
    collect(collect, *alert);
    using QAccessible::Button;
    using QAccessible::StaticText;
    EXPECT_THAT(
        children,
        ElementsAre(std::pair{StaticText, "cloud-sync is using a lot of data"},
                    std::pair{StaticText, "412.0 MB in 1min · limit 100.0 MB\n43% of your plan used · 1.2 GB left"},
                    std::pair{Button, "Snooze 15 min"}, std::pair{Button, "Pause"}, std::pair{Button, "Never limit"},
                    std::pair{Button, "Show details"}, std::pair{Button, "Dismiss"}));
    QAccessible::queryAccessibleInterface(buttons(window(0))[1])
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(testing::until([this] { return !pressed.empty(); })) << "as long as a finger takes";
    EXPECT_THAT(pressed, ElementsAre(std::pair{1U, 1U}));
}

TEST_F(ToastScreenTest, aLargerFontMakesRoom)
{
    show({toast(1), toast(2)});
    const int before = window(0).height();
    const QFont font = QApplication::font();
    QFont larger = font;
    larger.setPointSizeF(font.pointSizeF() * 2);
    QApplication::setFont(larger);
    show({toast(3), toast(4)});
    EXPECT_GT(window(0).height(), before);
    EXPECT_EQ(window(0).width(), 340);
    EXPECT_EQ(window(1).y(), window(0).y() + window(0).height() + 12);
    for (const ToastButton* const each : buttons(window(0)))
        EXPECT_LE(each->geometry().right(), 340 - 12) << each->text().toStdString();
    QApplication::setFont(font);
}

} // namespace
} // namespace quellon
