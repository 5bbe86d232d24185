#include "SettingsViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr NumberField planSize{NumberField::Kind::planSize, {}};
constexpr NumberField startDay{NumberField::Kind::startDay, {}};
constexpr NumberField carrier{NumberField::Kind::carrierReading, {}};

class PlanPageTest : public testing::Test {
protected:
    SettingsView view;
    PlanPageTest()
    {
        view.use(3'000 * mega);
        view.open(SettingsTab::plan);
    }
};

TEST_F(PlanPageTest, controlsAndTexts)
{
    struct Case {
        const char* name;
        QAccessible::Role role;
    };
    view.does(AddProfile{});
    view.use(1);
    view.types(carrier, "4");
    view.does(MatchCarrier{});
    view.refresh();
    settleEvents();
    constexpr Case cases[] = {
        {"Active plan profile", QAccessible::ComboBox},
        {"Rename this profile", QAccessible::EditableText},
        {"Add a plan profile", QAccessible::Button},
        {"Delete the active profile", QAccessible::Button},
        {"Monthly plan in gigabytes", QAccessible::EditableText},
        {"Billing cycle start day", QAccessible::EditableText},
        {"Mainly used for", QAccessible::ComboBox},
        {"Re-derive limits from plan", QAccessible::Button},
        {"Usage your carrier shows, in gigabytes", QAccessible::EditableText},
        {"Match", QAccessible::Button},
        {"Clear", QAccessible::Button},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QWidget* const control = named(view.window, c.name);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(role(control), c.role);
    }
    const auto page = std::get<PlanTabModel>(view.model().page);
    for (const std::string& text :
         {std::string{"Plan profile"}, std::string{"Profile name"}, std::string{"Monthly plan"}, std::string{"GB"},
          std::string{"Billing starts on"}, std::string{"of each month"}, page.dailyBudget, *page.profilesFooter,
          std::string{"This cycle"}, page.cycle->used.value, page.cycle->left.value, page.cycle->note,
          *page.cycle->adjusted}) {
        EXPECT_NE(label(view.window, text), nullptr) << text;
    }
    EXPECT_EQ(view.the<QLineEdit>("Usage your carrier shows, in gigabytes").placeholderText(), QStringLiteral("18.2"));
}

TEST_F(PlanPageTest, onePlanCannotBeDeleted)
{
    EXPECT_EQ(named(view.window, "Delete the active profile"), nullptr);
    EXPECT_EQ(named(view.window, "Clear"), nullptr);
    view.click("Add a plan profile");
    EXPECT_THAT(view.settings().profiles, SizeIs(2));
    view.click("Delete the active profile");
    EXPECT_THAT(view.settings().profiles, SizeIs(1));
    EXPECT_EQ(named(view.window, "Delete the active profile"), nullptr);
}

TEST_F(PlanPageTest, withoutAMeasuredCycleThereIsNoCard)
{
    EXPECT_NE(label(view.window, "This cycle"), nullptr);
    auto model = view.model();
    std::get<PlanTabModel>(model.page).cycle.reset();
    view.window.setModel(model);
    settleEvents();
    EXPECT_EQ(label(view.window, "This cycle"), nullptr);
    EXPECT_EQ(named(view.window, "Match"), nullptr);
}

TEST_F(PlanPageTest, aPlanIsChosen)
{
    view.click("Add a plan profile");
    auto& box = view.the<ChoiceBox>("Active plan profile");
    ASSERT_EQ(box.count(), 2);
    EXPECT_EQ(box.currentText(), QStringLiteral("New profile"));
    choose(box, 0);
    EXPECT_EQ(view.settings().activeProfileID, view.settings().profiles[0].id);
    EXPECT_EQ(view.the<QLineEdit>("Rename this profile").text(), QStringLiteral("My plan"));
    choose(box, 0);
    EXPECT_THAT(view.all<SelectProfile>(), SizeIs(1)) << "it is chosen already";
}

TEST_F(PlanPageTest, aNameIsTypedWithTheCursorWhereItIs)
{
    auto& field = view.the<FieldEdit>("Rename this profile");
    field.setFocus();
    field.setCursorPosition(2);
    key(Qt::Key_X, {}, QStringLiteral("旅"));
    EXPECT_EQ(view.settings().activeProfile().name, "My旅 plan");
    EXPECT_EQ(field.cursorPosition(), 3);
    key(Qt::Key_X, {}, QStringLiteral("x"));
    EXPECT_EQ(view.settings().activeProfile().name, "My旅x plan");
    EXPECT_EQ(view.all<RenameProfile>().back().plan, view.settings().activeProfileID);
}

TEST_F(PlanPageTest, aNumberTakesEffectWhenItsFieldIsLeft)
{
    auto& field = view.the<FieldEdit>("Monthly plan in gigabytes");
    typeInto(field, "50");
    EXPECT_EQ(view.settings().planGB(), 30.0);
    EXPECT_THAT(view.all<EditNumber>(), ElementsAre(EditNumber{planSize, "5"}, EditNumber{planSize, "50"}));
    key(Qt::Key_Tab);
    EXPECT_THAT(view.all<CommitNumber>(), ElementsAre(CommitNumber{planSize}));
    EXPECT_EQ(view.settings().planGB(), 50.0);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Billing cycle start day"));
    key(Qt::Key_Tab);
    EXPECT_THAT(view.all<CommitNumber>(), SizeIs(1)) << "nothing was typed";
}

TEST_F(PlanPageTest, enterCommitsAndShowsTheNumberAsItIs)
{
    auto& field = view.the<FieldEdit>("Monthly plan in gigabytes");
    typeInto(field, "030.50");
    key(Qt::Key_Return);
    EXPECT_EQ(view.settings().planGB(), 30.5);
    EXPECT_EQ(field.text(), QStringLiteral("30.5"));
    EXPECT_TRUE(field.hasFocus());
    typeInto(field, "30.500");
    key(Qt::Key_Enter);
    EXPECT_EQ(field.text(), QStringLiteral("30.5")) << "the same number, typed otherwise";
}

TEST_F(PlanPageTest, whatIsRefusedSaysWhy)
{
    auto& field = view.the<FieldEdit>("Billing cycle start day");
    typeInto(field, "45");
    EXPECT_EQ(field.accessibleDescription(), QStringLiteral("Enter a day from 1 to 31."));
    QLabel* const refusal = label(view.window, "Enter a day from 1 to 31.");
    ASSERT_NE(refusal, nullptr);
    key(Qt::Key_Return);
    EXPECT_EQ(field.text(), QStringLiteral("45")) << "it stays to be mended";
    EXPECT_EQ(view.settings().billingCycleStartDay(), 1);
    typeInto(field, "31");
    EXPECT_TRUE(field.accessibleDescription().isEmpty());
    EXPECT_FALSE(refusal->isVisible());
    key(Qt::Key_Return);
    EXPECT_EQ(field.text().toStdString(),
              NumberField::text(static_cast<double>(view.settings().billingCycleStartDay())));
}

TEST_F(PlanPageTest, aModelOnTheWayDoesNotDisturbTheTyping)
{
    SettingsWindow window; // whose actions nobody carries out
    auto model = view.model();
    auto& page = std::get<PlanTabModel>(model.page);
    const auto arrives = [&](const char* size) {
        page.dailyBudget += "."; // it is another model each time
        page.planSize.text = size;
        window.setModel(model);
    };
    window.setModel(model);
    window.show();
    window.activateWindow();
    settleEvents();
    auto& field = *named<FieldEdit>(window, "Monthly plan in gigabytes");
    typeInto(field, "4");
    arrives("30");
    EXPECT_EQ(field.text(), QStringLiteral("4")) << "that model is from before the key";
    arrives("4");
    key(0, {}, QStringLiteral("2"));
    arrives("4");
    EXPECT_EQ(field.text(), QStringLiteral("42"));
    EXPECT_EQ(field.cursorPosition(), 2);
    arrives("77");
    EXPECT_EQ(field.text(), QStringLiteral("77")) << "the model has another one";
}

TEST_F(PlanPageTest, anAssistiveProgramPutsANumberIn)
{
    auto& field = view.the<FieldEdit>("Monthly plan in gigabytes");
    ASSERT_FALSE(field.hasFocus());
    QAccessibleEditableTextInterface* const editable =
        QAccessible::queryAccessibleInterface(&field)->editableTextInterface();
    ASSERT_NE(editable, nullptr);
    editable->replaceText(0, static_cast<int>(field.text().size()), QStringLiteral("64"));
    EXPECT_EQ(view.settings().planGB(), 64.0);
}

TEST_F(PlanPageTest, whatIsBeingTypedCountsForAButtonThatIsPressed)
{
    typeInto(view.the<FieldEdit>("Monthly plan in gigabytes"), "60");
    view.click("Re-derive limits from plan");
    EXPECT_EQ(view.settings().planGB(), 60.0);
    GTEST_ASSERT_EQ(std::holds_alternative<CommitNumber>(view.actions[view.actions.size() - 2]), true);
    EXPECT_TRUE(std::holds_alternative<RederiveRules>(view.actions.back()));
}

TEST_F(PlanPageTest, usageProfile)
{
    auto& box = view.the<ChoiceBox>("Mainly used for");
    choose(box, 2);
    EXPECT_EQ(view.settings().profile(), usageProfiles.rows[2].value);
    EXPECT_EQ(box.currentText(), QStringLiteral("Heavy — video calls, streaming"));
}

TEST_F(PlanPageTest, calibration)
{
    auto& field = view.the<FieldEdit>("Usage your carrier shows, in gigabytes");
    view.click("Match");
    EXPECT_EQ(view.engine.budget().calibrationOffsetBytes, 0) << "the field is empty";
    typeInto(field, "4");
    view.click("Match");
    EXPECT_EQ(view.engine.budgetStatus()->usedBytes, 4'096 * mega);
    EXPECT_TRUE(field.text().isEmpty());
    view.click("Clear");
    EXPECT_EQ(view.engine.budget().calibrationOffsetBytes, 0);
    EXPECT_EQ(named(view.window, "Clear"), nullptr);
    typeInto(field, "-1");
    EXPECT_FALSE(field.accessibleDescription().isEmpty());
    view.click("Match");
    EXPECT_EQ(view.engine.budget().calibrationOffsetBytes, 0);
}

/// The user has changed a rule, and derives them anew.
class RederiveTest : public PlanPageTest {
protected:
    RederiveTest()
    {
        view.change([](GuardSettings& settings) { settings.rules()[0].thresholdBytes = 20 * mega; });
        view.refresh();
        view.the<Pressable>("Re-derive limits from plan").setFocus();
        key(Qt::Key_Space);
        settleEvents();
    }
};

TEST_F(RederiveTest, asks)
{
    const auto question = std::get<PlanTabModel>(view.model().page).question;
    ASSERT_TRUE(question);
    EXPECT_NE(label(view.window, question->title), nullptr);
    EXPECT_NE(label(view.window, question->changes[0]), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), &view.the<QWidget>("Keep mine")) << "what takes nothing away";
    EXPECT_EQ(role(named(view.window, "Replace your limits with the derived defaults?")), QAccessible::Dialog);
}

TEST_F(RederiveTest, replace)
{
    view.click("Replace");
    EXPECT_NE(view.settings().rules()[0].thresholdBytes, 20 * mega);
    EXPECT_EQ(named(view.window, "Replace"), nullptr);
}

TEST_F(RederiveTest, keep)
{
    key(Qt::Key_Return);
    EXPECT_EQ(view.settings().rules()[0].thresholdBytes, 20 * mega);
    EXPECT_EQ(named(view.window, "Replace"), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), &view.the<QWidget>("Re-derive limits from plan")) << "back where it was";
}

TEST_F(RederiveTest, escape)
{
    key(Qt::Key_Escape);
    EXPECT_THAT(view.all<KeepRules>(), SizeIs(1));
    EXPECT_EQ(named(view.window, "Replace"), nullptr);
    EXPECT_EQ(view.settings().rules()[0].thresholdBytes, 20 * mega);
}

TEST_F(RederiveTest, theKeyboardStaysInTheQuestion)
{
    std::vector<std::string> names;
    for (int i = 0; i < 4; ++i) {
        key(Qt::Key_Tab);
        names.push_back(QApplication::focusWidget()->accessibleName().toStdString());
    }
    EXPECT_THAT(names, ElementsAre("Replace", "Keep mine", "Replace", "Keep mine"));
    key(Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Replace"));
}

TEST_F(RederiveTest, endsWithItsWindow)
{
    view.window.close();
    EXPECT_THAT(view.state.pendingRederive, IsEmpty());
    EXPECT_EQ(view.settings().rules()[0].thresholdBytes, 20 * mega);
}

TEST_F(PlanPageTest, derivedRulesAreReplacedWithoutAQuestion)
{
    view.click("Re-derive limits from plan");
    EXPECT_EQ(named(view.window, "Replace"), nullptr);
    EXPECT_THAT(view.settings().rules(), SizeIs(2));
}

TEST_F(PlanPageTest, aLongNameIsElidedAndTheWindowKeepsItsWidth)
{
    const QSize before = view.window.size();
    view.does(RenameProfile{std::string(300, 'n') + "end"});
    view.refresh();
    settleEvents();
    EXPECT_EQ(view.window.size(), before);
    EXPECT_LE(view.the<ChoiceBox>("Active plan profile").width(), 260);
    for (QWidget* const each : view.window.findChildren<QWidget*>()) {
        if (!each->isVisible() || each->window() != &view.window) continue;
        EXPECT_LE(each->mapTo(&view.window, QPoint{}).x() + each->width(), before.width())
            << each->metaObject()->className();
    }
}

TEST_F(PlanPageTest, theWheelChangesNothing)
{
    auto& box = view.the<ChoiceBox>("Mainly used for");
    const int before = box.currentIndex();
    box.setFocus();
    for (const int turn : {120, -120}) {
        QWheelEvent event{QPointF{5, 5}, QPointF{5, 5}, {}, {0, turn}, Qt::NoButton, {}, Qt::NoScrollPhase, false};
        QApplication::sendEvent(&box, &event);
        EXPECT_FALSE(event.isAccepted()) << "the page is what scrolls";
    }
    EXPECT_EQ(box.currentIndex(), before);
    EXPECT_THAT(view.actions, IsEmpty());
}

} // namespace
} // namespace quellon
