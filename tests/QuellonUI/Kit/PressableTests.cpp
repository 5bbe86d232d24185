#include "KitTest.h"

#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/LinkButton.h"
#include "QuellonUI/Kit/MenuButton.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Kit/Switch.h"

#include <QMenu>
#include <QVBoxLayout>

#include <memory>

namespace quellon {
namespace {

/// A button, and how often it was chosen.
class PressableTest : public KitTest {
protected:
    PushButton button{Fonts::callout()};
    int chosen = 0;

    PressableTest()
    {
        QObject::connect(&button, &Pressable::chosen, &button, [this] { ++chosen; });
        button.setTitle(QStringLiteral("Resume"));
        button.show();
    }
};

/// The ways to press a button, each in two halves, between which something may happen.
struct Way {
    const char* name;
    void (*begin)(QWidget& button);
    void (*end)(QWidget& button);
};

class Ways : public KitTest {
public:
    static constexpr Way all[] = {
        {"mouse", [](QWidget& button) { sendMouse(button, QEvent::MouseButtonPress, button.rect().center()); },
         [](QWidget& button) { sendMouse(button, QEvent::MouseButtonRelease, button.rect().center()); }},
        {"mouse that leaves and comes back",
         [](QWidget& button) {
             sendMouse(button, QEvent::MouseButtonPress, button.rect().center());
             sendMouse(button, QEvent::MouseMove, QPoint{-50, -50});
         },
         [](QWidget& button) {
             sendMouse(button, QEvent::MouseMove, button.rect().center());
             sendMouse(button, QEvent::MouseButtonRelease, button.rect().center());
         }},
        {"space", [](QWidget& button) { sendKey(button, QEvent::KeyPress, Qt::Key_Space); },
         [](QWidget& button) { sendKey(button, QEvent::KeyRelease, Qt::Key_Space); }},
    };

private:
    void TestBody() override {}
};

TEST_F(PressableTest, theSecondHalfOfADoubleClickCountsWhereTheFirstOneDid)
{
    const QPoint middle = button.rect().center();
    const auto clickTwice = [&](QWidget& first) {
        sendMouse(first, QEvent::MouseButtonPress, first.rect().center());
        sendMouse(first, QEvent::MouseButtonRelease, first.rect().center());
        sendMouse(button, QEvent::MouseButtonDblClick, middle);
        sendMouse(button, QEvent::MouseButtonRelease, middle);
    };
    PushButton other{Fonts::callout()};
    clickTwice(other);
    EXPECT_EQ(chosen, 0) << "it has come under the pointer meanwhile";
    EXPECT_FALSE(button.isDown());
    clickTwice(button);
    EXPECT_EQ(chosen, 2);
    sendMouse(button, QEvent::MouseButtonPress, middle);
    sendMouse(button, QEvent::MouseButtonRelease, middle);
    EXPECT_EQ(chosen, 3);
}

TEST_F(PressableTest, aPressCountsForWhatStoodThereThroughout)
{
    struct Case {
        const char* name;
        void (*meanwhile)(Pressable& button);
        bool counts;
    };
    constexpr Case cases[] = {
        {"nothing happens", [](Pressable&) {}, true},
        {"another title for the same", [](Pressable& one) { one.setTitle(QStringLiteral("Go on")); }, true},
        {"it lapses", [](Pressable& one) { one.lapse(); }, false},
        {"it is held from then on", [](Pressable& one) { one.setHeld(true); }, true},
    };
    for (const auto& c : cases) {
        for (const auto& way : Ways::all) {
            SCOPED_TRACE(std::string{c.name} + ", " + way.name);
            button.setHeld(false);
            chosen = 0;
            way.begin(button);
            c.meanwhile(button);
            way.end(button);
            EXPECT_EQ(chosen, c.counts ? 1 : 0);
            button.setHeld(false);
            way.begin(button);
            way.end(button);
            EXPECT_EQ(chosen, c.counts ? 2 : 1) << "the next press counts";
        }
    }
}

TEST_F(PressableTest, aPressOnAHeldButtonNeverCounts)
{
    for (const auto& way : Ways::all) {
        SCOPED_TRACE(way.name);
        button.setHeld(true);
        way.begin(button);
        button.setHeld(false);
        way.end(button);
        EXPECT_EQ(chosen, 0);
    }
}

TEST_F(PressableTest, enterPressesOnceHoweverLongItIsDown)
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        chosen = 0;
        sendKey(button, QEvent::KeyPress, key);
        sendKey(button, QEvent::KeyPress, key, true);
        sendKey(button, QEvent::KeyPress, key, true);
        sendKey(button, QEvent::KeyRelease, key);
        EXPECT_EQ(chosen, 1);
    }
    button.setEnabled(false);
    sendKey(button, QEvent::KeyPress, Qt::Key_Return);
    EXPECT_EQ(chosen, 1);
}

TEST_F(PressableTest, titleAndName)
{
    const auto nameOf = [this] { return QAccessible::queryAccessibleInterface(&button)->text(QAccessible::Name); };
    EXPECT_EQ(nameOf(), QStringLiteral("Resume"));
    button.setTitle(QStringLiteral("A & B"), QStringLiteral("Open A & B"));
    EXPECT_EQ(nameOf(), QStringLiteral("Open A & B"));
    EXPECT_TRUE(button.shortcut().isEmpty());
    EXPECT_EQ(button.text(), QStringLiteral("A && B"));
    const int wide = button.sizeHint().width();
    button.setTitle(QStringLiteral("A && B"));
    EXPECT_GT(button.sizeHint().width(), wide) << "every ampersand is shown";
}

TEST_F(PressableTest, theRingShowsForTheKeyboardAlone)
{
    const QColor accent = Theme::light().accent;
    button.activateWindow();
    letItHappen();
    button.setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(count(grabbed(button), accent), 0);
    button.clearFocus();
    button.setFocus(Qt::TabFocusReason);
    EXPECT_GT(count(grabbed(button), accent), 20);
}

TEST_F(PressableTest, clicksLeaveTheFocusWhereItIs)
{
    for (Pressable* const each :
         std::initializer_list<Pressable*>{new PushButton{Fonts::body()}, new LinkButton{Fonts::body()},
                                           new IconButton{16}, new Switch, new MenuButton{Fonts::body()}}) {
        const std::unique_ptr<Pressable> owner{each};
        EXPECT_EQ(each->focusPolicy(), Qt::TabFocus);
    }
}

TEST_F(KitTest, switchShowsWhatItIsTold)
{
    Switch toggle;
    int chosen = 0;
    QObject::connect(&toggle, &Pressable::chosen, &toggle, [&chosen] { ++chosen; });
    toggle.show();
    toggle.click();
    EXPECT_EQ(chosen, 1);
    EXPECT_FALSE(toggle.isChecked());
    toggle.setOn(true);
    EXPECT_TRUE(toggle.isChecked());
    EXPECT_EQ(chosen, 1);
    EXPECT_GT(count(grabbed(toggle), Theme::light().good), 200);
    auto* const accessible = QAccessible::queryAccessibleInterface(&toggle);
    EXPECT_EQ(accessible->role(), QAccessible::CheckBox);
    EXPECT_TRUE(accessible->state().checked);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(chosen, 2);
    EXPECT_TRUE(toggle.isChecked());
    toggle.setOn(false);
    EXPECT_EQ(count(grabbed(toggle), Theme::light().good), 0);
    toggle.setEnabled(false);
    toggle.click();
    EXPECT_EQ(chosen, 2);
}

TEST_F(KitTest, menuButtonOpensItsMenuWithoutWaitingForIt)
{
    MenuButton button{Fonts::caption()};
    button.setTitle(QStringLiteral("Pixel 8"), QStringLiteral("Switch plan profile"));
    button.setSymbols("simcard", "chevron.up.chevron.down");
    button.menu().addAction(QStringLiteral("Pixel 8"));
    button.show();
    letItHappen();
    auto* const accessible = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(accessible->role(), QAccessible::ButtonMenu);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Switch plan profile"));
    EXPECT_TRUE(accessible->state().hasPopup);
    EXPECT_TRUE(accessible->state().focusable);
    for (const int key : {Qt::Key_Space, Qt::Key_Return}) {
        sendKey(button, QEvent::KeyPress, key);
        sendKey(button, QEvent::KeyRelease, key);
        EXPECT_TRUE(button.menu().isVisible());
        button.menu().hide();
    }
    accessible->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    for (int i = 0; i < 100 && !button.menu().isVisible(); ++i) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_TRUE(button.menu().isVisible());
    button.menu().hide();
}

TEST_F(KitTest, pushButtonKinds)
{
    const Theme& theme = Theme::light();
    PushButton button{Fonts::callout()};
    button.setTitle(QStringLiteral("Stop it"));
    button.setKind(PushButton::Kind::primary);
    button.resize(button.sizeHint());
    EXPECT_GT(count(grabbed(button), theme.accentFill), 200);
    button.setKind(PushButton::Kind::destructive);
    EXPECT_EQ(count(grabbed(button), theme.accentFill), 0);
    EXPECT_GT(count(grabbed(button, 3.0), theme.badText), 20);
    EXPECT_EQ(grabbed(button).pixelColor(0, 0).alpha(), 0) << "its corners are round";
}

} // namespace
} // namespace quellon
