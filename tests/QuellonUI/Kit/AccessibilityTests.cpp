#include "QuellonUI/Kit/Accessibility.h"

#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/TextRuns.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <gtest/gtest.h>

namespace quellon {

namespace {

class AccessibilityTest : public testing::Test {
protected:
    AccessibilityTest() { Accessibility::install(); }

    static QAccessible::Role role(QWidget& widget) { return QAccessible::queryAccessibleInterface(&widget)->role(); }
    static QString text(QWidget& widget, QAccessible::Text kind)
    {
        return QAccessible::queryAccessibleInterface(&widget)->text(kind);
    }
};

} // namespace

TEST_F(AccessibilityTest, windowsAreWindows)
{
    QWidget window;
    window.setWindowTitle(QStringLiteral("Settings"));
    EXPECT_EQ(role(window), QAccessible::Window);
    EXPECT_EQ(text(window, QAccessible::Name), QStringLiteral("Settings"));
}

TEST_F(AccessibilityTest, openMenusAreInTheirWindow)
{
    QWidget window;
    QWidget other;
    QLabel label{&window};
    QMenu menu{&label};
    menu.addAction(QStringLiteral("Travel SIM"));
    window.show();
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&window);
    EXPECT_EQ(seen->childCount(), 1);
    menu.popup({});
    ASSERT_EQ(seen->childCount(), 2);
    QAccessibleInterface* const last = seen->child(1);
    EXPECT_EQ(last->role(), QAccessible::PopupMenu);
    EXPECT_EQ(last->child(0)->text(QAccessible::Name), QStringLiteral("Travel SIM"));
    EXPECT_EQ(seen->indexOfChild(last), 1);
    EXPECT_EQ(seen->child(0)->object(), &label);
    EXPECT_EQ(seen->child(2), nullptr);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&other)->childCount(), 0);
    menu.hide();
    EXPECT_EQ(seen->childCount(), 1);
    EXPECT_EQ(seen->child(1), nullptr);
}

TEST_F(AccessibilityTest, partsBelongTogether)
{
    QWidget window;
    Card card{&window};
    QWidget named{&window};
    named.setAccessibleName(QStringLiteral("Plan"));
    QWidget layout{&window};
    EXPECT_EQ(role(card), QAccessible::Grouping);
    EXPECT_EQ(role(named), QAccessible::Grouping);
    EXPECT_EQ(role(layout), QAccessible::Client);
}

TEST_F(AccessibilityTest, labelsStayLabels)
{
    QLabel label{QStringLiteral("Usage")};
    EXPECT_EQ(role(label), QAccessible::StaticText);
}

TEST_F(AccessibilityTest, piecesOfTextAreText)
{
    TextRuns runs{QFont{}};
    runs.setRuns({{QStringLiteral("30 GB left")}, {QStringLiteral("· today")}});
    EXPECT_EQ(role(runs), QAccessible::StaticText);
    EXPECT_EQ(text(runs, QAccessible::Name), QStringLiteral("30 GB left · today"));
}

TEST_F(AccessibilityTest, choiceTellsWhatItIsForAndWhatIsChosen)
{
    QComboBox box;
    box.addItems({QStringLiteral("Light"), QStringLiteral("Heavy")});
    box.setAccessibleName(QStringLiteral("Mainly used for"));
    EXPECT_EQ(role(box), QAccessible::ComboBox);
    EXPECT_EQ(text(box, QAccessible::Name), QStringLiteral("Mainly used for"));
    EXPECT_EQ(text(box, QAccessible::Description), QStringLiteral("Light"));
    box.setCurrentIndex(1);
    EXPECT_EQ(text(box, QAccessible::Description), QStringLiteral("Heavy"));
    EXPECT_EQ(text(box, QAccessible::Value), QStringLiteral("Heavy"));
}

TEST_F(AccessibilityTest, choiceWithoutANameIsCalledByWhatIsChosen)
{
    QComboBox box;
    box.addItem(QStringLiteral("Light"));
    EXPECT_EQ(text(box, QAccessible::Name), QStringLiteral("Light"));
}

TEST_F(AccessibilityTest, choiceHasItsListBelowAndOpens)
{
    QComboBox box;
    box.addItems({QStringLiteral("Light"), QStringLiteral("Heavy")});
    box.show();
    QAccessibleInterface* const choice = QAccessible::queryAccessibleInterface(&box);
    ASSERT_EQ(choice->childCount(), 1);
    QAccessibleInterface* const list = choice->child(0);
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->parent(), choice);
    EXPECT_EQ(choice->indexOfChild(list), 0);
    EXPECT_EQ(choice->child(1), nullptr);
    EXPECT_FALSE(choice->state().expanded);
    choice->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(choice->state().expanded);
    choice->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_FALSE(choice->state().expanded);
}

} // namespace quellon
