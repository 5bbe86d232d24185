#include "QuellonUI/Kit/Appearance.h"
#include "SettingsViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QScrollBar>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;

/// Whether a ring shows that the keyboard is here.
bool showsRing(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    const QRgb accent = Theme::of(widget.palette()).accent.rgb();
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) found += image.pixel(x, y) == accent ? 1 : 0;
    }
    return found > widget.width() / 2;
}

class SheetTest : public testing::Test {
protected:
    SheetTest() { Appearance::apply(false); }

    SettingsView view;
    std::string focus() const
    {
        return QApplication::focusWidget() != nullptr ? QApplication::focusWidget()->accessibleName().toStdString()
                                                      : "";
    }
};

TEST_F(SheetTest, aSheetGoesWhenItsPageDoes)
{
    view.open(SettingsTab::apps);
    view.the<Pressable>("Add an app to the policy list").setFocus();
    key(Qt::Key_Return);
    settleEvents();
    ASSERT_NE(named(view.window, "Filter"), nullptr);
    view.does(SelectTab{SettingsTab::log});
    view.refresh();
    settleEvents();
    EXPECT_EQ(named(view.window, "Filter"), nullptr);
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_TRUE(QApplication::focusWidget()->isVisible());
}

TEST_F(SheetTest, escapeEndsASheetThatHasLostTheFocus)
{
    view.open(SettingsTab::plan);
    view.does(OpenDetails{"helperd"});
    view.refresh();
    settleEvents();
    QApplication::focusWidget()->clearFocus();
    QKeyEvent escape{QEvent::KeyPress, Qt::Key_Escape, {}};
    QApplication::sendEvent(&view.window, &escape);
    EXPECT_EQ(view.engine.detailApp(), std::nullopt);
    QKeyEvent another{QEvent::KeyPress, Qt::Key_Escape, {}};
    QApplication::sendEvent(&view.window, &another);
    EXPECT_TRUE(view.window.isVisible()) << "the window itself stays";
}

TEST_F(SheetTest, aSheetKeepsTheMouseToItself)
{
    view.open(SettingsTab::plan);
    view.does(OpenDetails{"helperd"});
    view.refresh();
    settleEvents();
    const QPoint tab = view.the<QWidget>("Rules").mapTo(&view.window, QPoint{10, 10});
    EXPECT_EQ(role(view.window.childAt(tab)), QAccessible::Dialog) << "the sheet's shade";
    view.does(CloseDetails{});
    view.refresh();
    settleEvents();
    EXPECT_EQ(view.window.childAt(tab)->accessibleName(), QStringLiteral("Rules"));
}

TEST_F(SheetTest, aSheetShowsWhereTheKeyboardIsWhenItWasOpenedByKeyboard)
{
    view.use(3'000 * mega);
    view.does(SetPolicy{"a-tool", AppPolicy::always});
    view.open(SettingsTab::apps);
    struct Case {
        const char* name;
        Qt::FocusReason reason;
        bool shown;
    };
    constexpr Case cases[] = {
        {"by mouse", Qt::MouseFocusReason, false},
        {"by keyboard", Qt::TabFocusReason, true},
        {"by mouse, after the keyboard", Qt::MouseFocusReason, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto& details = view.the<Pressable>("Details for a-tool");
        details.clearFocus();
        details.setFocus(c.reason);
        EXPECT_EQ(showsRing(details), c.shown);
        view.click("Details for a-tool");
        ASSERT_EQ(focus(), "Close");
        EXPECT_EQ(showsRing(view.the<Pressable>("Close")), c.shown);
        view.click("Close");
        EXPECT_EQ(showsRing(view.the<Pressable>("Details for a-tool")), c.shown) << "as it was";
    }
}

TEST_F(SheetTest, aLongQuestionIsScrolledByKeyboard)
{
    view.open(SettingsTab::plan);
    auto model = view.model();
    auto& question = std::get<PlanTabModel>(model.page).question.emplace();
    question.title = "Replace?";
    question.keep = {"Keep mine", "Keep mine", KeepRules{}};
    question.replace = {"Replace", "Replace", ReplaceRules{}};
    question.changes = {"one change"};
    view.window.setModel(model);
    settleEvents();
    const auto walk = [&] {
        std::vector<std::string> names;
        for (int i = 0; i < 3; ++i) {
            names.push_back(focus());
            key(Qt::Key_Tab);
        }
        return names;
    };
    EXPECT_THAT(walk(), ElementsAre("Keep mine", "Replace", "Keep mine")) << "nothing to scroll";
    question.changes.assign(100, "one change");
    view.window.setModel(model);
    settleEvents();
    view.the<Pressable>("Keep mine").setFocus();
    EXPECT_THAT(walk(), ElementsAre("Keep mine", "Replace", "Replace?"));
    auto& list = view.the<QAbstractScrollArea>("Replace?");
    list.setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(showsRing(list));
    key(Qt::Key_PageDown);
    EXPECT_GT(list.verticalScrollBar()->value(), 0);
    key(Qt::Key_Tab);
    EXPECT_FALSE(showsRing(list));
}

TEST_F(SheetTest, detailsThatAreCutOffAreScrolledByKeyboard)
{
    view.open(SettingsTab::plan);
    view.does(OpenDetails{"helperd"});
    auto model = view.model();
    model.detail->actions.assign(100, "Paused at noon.");
    view.window.setModel(model);
    settleEvents();
    auto& sections = view.the<QAbstractScrollArea>("helperd");
    EXPECT_FALSE(showsRing(sections));
    sections.setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(showsRing(sections));
    key(Qt::Key_PageDown);
    EXPECT_GT(sections.verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace quellon
