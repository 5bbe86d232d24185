#include "QuellonUI/Onboarding/OnboardingWindow.h"

#include "../Settings/SettingsViews.h"
#include "QuellonCore/Presentation/FirstPlace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScreen>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OnboardingWindowTest : public testing::Test {
protected:
    SettingsWorld world;
    std::vector<SettingsAction> actions;
    bool done = false;
    OnboardingWindow window;

    OnboardingWindowTest()
    {
        QApplication::setCursorFlashTime(0);
        QObject::connect(&window, &OnboardingWindow::acted, &window, [this](const SettingsAction& action) {
            actions.push_back(action);
            done = world.does(action) || done;
            refresh();
        });
        refresh();
        window.show();
        window.activateWindow();
        settleEvents();
    }
    [[nodiscard]] OnboardingModel model() const { return OnboardingModel::of(world.engine, world.state); }
    void refresh() { window.setModel(model()); }
    FieldEdit& size() { return *named<FieldEdit>(window, "Monthly plan in gigabytes"); }
    Pressable& start() { return *named<Pressable>(window, "Start guarding"); }
};

TEST_F(OnboardingWindowTest, controlsAndTexts)
{
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Welcome to Quellon"));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
    std::vector<std::string> texts{std::string{OnboardingModel::title},
                                   std::string{OnboardingModel::text},
                                   "My plan",
                                   "GB / month",
                                   "Billing starts on",
                                   "of each month",
                                   "Mainly used for",
                                   std::string{OnboardingModel::previewHeading},
                                   model().dailyBudget,
                                   std::string{OnboardingModel::note}};
    for (const auto& limit : model().limits) {
        for (const auto& text : {limit.over, limit.window, limit.level}) texts.push_back(text);
    }
    for (const auto& text : texts) EXPECT_NE(label(window, text), nullptr) << text;
    EXPECT_EQ(role(&size()), QAccessible::EditableText);
    EXPECT_EQ(role(named(window, "Billing cycle start day")), QAccessible::EditableText);
    EXPECT_EQ(role(named(window, "Mainly used for")), QAccessible::ComboBox);
    EXPECT_EQ(role(&start()), QAccessible::Button);
}

TEST_F(OnboardingWindowTest, isInTheMiddleAndTheKeyboardInTheFirstField)
{
    const QRect area = window.screen()->availableGeometry();
    EXPECT_LE(std::abs(window.geometry().center().x() - area.center().x()), 2);
    const QRect whole = window.geometry().adjusted(0, 0, 0, FirstPlace::titleHeight); // as if its frame were there
    EXPECT_LE(std::abs(whole.center().y() - area.center().y()), 2);
    EXPECT_EQ(QApplication::focusWidget(), &size());
    EXPECT_EQ(size().selectedText(), size().text());
}

TEST_F(OnboardingWindowTest, thePreviewFollowsTheTyping)
{
    const std::string before = model().dailyBudget;
    typeInto(size(), "300");
    EXPECT_EQ(label(window, before), nullptr);
    EXPECT_NE(label(window, model().dailyBudget), nullptr);
    EXPECT_NE(label(window, model().limits[0].over), nullptr);
    choose(*named<ChoiceBox>(window, "Mainly used for"), 0);
    EXPECT_EQ(world.settings().profile(), UsageProfile::light);
    settleEvents();
    for (const auto& limit : model().limits) EXPECT_NE(label(window, limit.over), nullptr);
}

TEST_F(OnboardingWindowTest, enterCommitsTheFieldAndThenStarts)
{
    typeInto(size(), "50");
    key(Qt::Key_Return);
    EXPECT_EQ(world.settings().planGB(), 50.0);
    EXPECT_FALSE(done);
    named<QWidget>(window, "Mainly used for")->setFocus();
    key(Qt::Key_Return);
    EXPECT_TRUE(done) << "the default button";
    EXPECT_TRUE(world.settings().onboarded);
}

TEST_F(OnboardingWindowTest, startsWithWhatWasTyped)
{
    typeInto(size(), "64");
    start().click();
    EXPECT_TRUE(done);
    EXPECT_EQ(world.settings().planGB(), 64.0);
    EXPECT_THAT(actions, testing::Contains(SettingsAction{StartGuarding{}}));
}

TEST_F(OnboardingWindowTest, cannotStartWithWhatIsRefused)
{
    const int before = window.height();
    typeInto(size(), "many");
    settleEvents();
    EXPECT_FALSE(start().isEnabled());
    QLabel* const refusal = label(window, "Enter a number.");
    ASSERT_NE(refusal, nullptr);
    EXPECT_GT(window.height(), before) << "the word why has its room";
    EXPECT_EQ(size().accessibleDescription(), QStringLiteral("Enter a number."));
    named<QWidget>(window, "Mainly used for")->setFocus();
    key(Qt::Key_Return);
    EXPECT_FALSE(done);
    EXPECT_FALSE(world.settings().onboarded);
}

TEST_F(OnboardingWindowTest, itsCloseBoxMeansNothing)
{
    int closed = 0;
    QObject::connect(&window, &OnboardingWindow::closed, &window, [&] { ++closed; });
    window.close();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(world.settings().onboarded);
    EXPECT_THAT(actions, IsEmpty());
}

TEST_F(OnboardingWindowTest, keyboardAlone)
{
    std::vector<std::string> names;
    for (int i = 0; i < 4; ++i) {
        names.push_back(QApplication::focusWidget()->accessibleName().toStdString());
        key(Qt::Key_Tab);
    }
    EXPECT_THAT(names, ElementsAre("Monthly plan in gigabytes", "Billing cycle start day", "Mainly used for",
                                   "Start guarding"));
    EXPECT_EQ(QApplication::focusWidget(), &size());
}

TEST_F(OnboardingWindowTest, anEqualModelPaintsNothing)
{
    PaintCounter painted{window};
    painted.restart();
    refresh();
    settleEvents();
    EXPECT_EQ(painted.count, 0);
    typeInto(size(), "31");
    settleEvents();
    EXPECT_GT(painted.count, 0) << "the counter counts";
}

TEST_F(OnboardingWindowTest, opensAndClosesAThousandTimes)
{
    const auto objects = [&] { return window.findChildren<QObject*>().size() + QApplication::allWidgets().size(); };
    const auto before = objects();
    for (int i = 0; i < 1'000; ++i) {
        window.close();
        window.show();
    }
    EXPECT_EQ(objects(), before);
}

} // namespace
} // namespace quellon
