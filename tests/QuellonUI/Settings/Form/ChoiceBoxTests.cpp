#include "QuellonUI/Settings/Form/ChoiceBox.h"

#include "QuellonUI/Kit/Appearance.h"
#include "QuellonUI/Theme.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace quellon {
namespace {

TEST(ChoiceBox, hasRoomForItsWidestTitle)
{
    Appearance::apply(false);
    const char* const cases[] = {"Ask me", "Light — mail, docs, browsing", "暂停（可恢复）", "（）", "🐌 slow"};
    for (const char* const each : cases) {
        SCOPED_TRACE(each);
        FormChoice choice;
        choice.options = {{each, {}}};
        choice.selected = 0;
        ChoiceBox box;
        box.setModel(choice);
        for (const QSize& size : {box.sizeHint(), box.minimumSizeHint()}) {
            QStyleOptionComboBox option;
            option.initFrom(&box);
            option.rect = QRect{QPoint{}, size};
            const QRect room =
                box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
            EXPECT_GE(room.width() - 2, box.fontMetrics().horizontalAdvance(box.currentText()));
        }
    }
}

/// A box that stands on the middle one of three, with the keyboard.
class ChoiceBoxKeys : public testing::Test {
protected:
    ChoiceBox box;
    std::vector<SettingsAction> acted;

    ChoiceBoxKeys()
    {
        using namespace SettingsActions;
        FormChoice choice;
        choice.options = {{"Never", SetPolicy{"mail", AppPolicy::never}},
                          {"Global", SetPolicy{"mail", AppPolicy::global}},
                          {"Block", SetPolicy{"mail", AppPolicy::always}}};
        choice.selected = 1;
        box.setModel(choice);
        QObject::connect(&box, &ChoiceBox::acted, &box,
                         [this](const SettingsAction& action) { acted.push_back(action); });
        box.show();
        box.activateWindow();
        box.setFocus();
        QApplication::processEvents();
    }
    ~ChoiceBoxKeys() override { box.hidePopup(); }

    static void send(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {}, const char* text = "")
    {
        QKeyEvent event{QEvent::KeyPress, key, modifiers, QString::fromUtf8(text)};
        QApplication::sendEvent(&widget, &event);
        QApplication::processEvents();
    }
    [[nodiscard]] bool isOpen() const { return box.view()->isVisible(); }
    [[nodiscard]] int current() const { return box.view()->currentIndex().row(); }
};

TEST_F(ChoiceBoxKeys, openTheListAndChooseNothing)
{
    struct Case {
        const char* name;
        int key;
        const char* text;
        int current; ///< In the list.
    };
    constexpr Case cases[] = {
        {"down", Qt::Key_Down, "", 1},      {"up", Qt::Key_Up, "", 1},       {"page down", Qt::Key_PageDown, "", 1},
        {"page up", Qt::Key_PageUp, "", 1}, {"home", Qt::Key_Home, "", 1},   {"end", Qt::Key_End, "", 1},
        {"space", Qt::Key_Space, " ", 1},   {"F4", Qt::Key_F4, "", 1},       {"a letter", Qt::Key_N, "n", 0},
        {"another", Qt::Key_B, "B", 2},     {"nobody's", Qt::Key_X, "x", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        send(box, c.key, {}, c.text);
        EXPECT_TRUE(isOpen());
        EXPECT_EQ(current(), c.current);
        EXPECT_EQ(box.currentIndex(), 1);
        send(*box.view(), Qt::Key_Escape);
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(box.currentIndex(), 1);
    }
    EXPECT_THAT(acted, testing::IsEmpty());
}

TEST_F(ChoiceBoxKeys, chooseInTheOpenList)
{
    using namespace SettingsActions;
    send(box, Qt::Key_Down);
    send(*box.view(), Qt::Key_Up);
    EXPECT_THAT(acted, testing::IsEmpty());
    send(*box.view(), Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(acted, testing::ElementsAre(SettingsAction{SetPolicy{"mail", AppPolicy::never}}));
}

TEST_F(ChoiceBoxKeys, areOthersWhenTheyAreNotTheBoxs)
{
    struct Case {
        const char* name;
        int key;
        Qt::KeyboardModifier modifier;
        const char* text;
    };
    constexpr Case cases[] = {
        {"enter", Qt::Key_Return, Qt::NoModifier, "\r"},
        {"escape", Qt::Key_Escape, Qt::NoModifier, "\x1b"},
        {"a shortcut", Qt::Key_B, Qt::ControlModifier, "\x02"},
        {"a menu's letter", Qt::Key_B, Qt::AltModifier, "b"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        send(box, c.key, c.modifier, c.text);
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(box.currentIndex(), 1);
    }
    EXPECT_THAT(acted, testing::IsEmpty());
}

} // namespace
} // namespace quellon
