#include "SettingsViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QListView>

namespace quellon {
namespace {

class LogPageTest : public testing::Test {
protected:
    SettingsView view;

    QListView& list() { return view.the<QListView>("Log"); }
    void append(const std::string& message) { view.engine.append(GuardEvent::Kind::info, message); }
    std::string line(int row)
    {
        return list().model()->index(row, 0).data(Qt::AccessibleTextRole).toString().toStdString();
    }
};

TEST_F(LogPageTest, nothingYet)
{
    view.open(SettingsTab::log);
    auto model = view.model();
    std::get<LogTabModel>(model.page).rows.clear();
    view.window.setModel(model);
    settleEvents();
    EXPECT_NE(label(view.window, "Nothing yet"), nullptr);
    EXPECT_EQ(named(view.window, "Log")->findChild<QListView*>(), nullptr);
}

TEST_F(LogPageTest, newestFirst)
{
    append("one");
    view.engine.append(GuardEvent::Kind::enforced, "two\nlines");
    view.open(SettingsTab::log);
    EXPECT_EQ(role(&list()), QAccessible::List);
    EXPECT_EQ(line(0), "10:00:00 enforced: two�lines");
    EXPECT_EQ(line(1), "10:00:00 info: one");
    EXPECT_EQ(label(view.window, "Nothing yet"), nullptr);
}

TEST_F(LogPageTest, linesAreCopied)
{
    append("one");
    append("two");
    append("three");
    view.open(SettingsTab::log);
    QGuiApplication::clipboard()->clear();
    list().setFocus();
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty()) << "nothing is selected";
    key(Qt::Key_Home);
    key(Qt::Key_Down);
    key(Qt::Key_Down, Qt::ShiftModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("10:00:00 info: two\n10:00:00 info: one"));
}

TEST_F(LogPageTest, whatIsSelectedStaysSelectedWhenLinesCome)
{
    append("one");
    append("two");
    view.open(SettingsTab::log);
    list().setFocus();
    key(Qt::Key_Home);
    for (int i = 0; i < 300; ++i) append(fmt::format("line {}", i));
    view.refresh();
    EXPECT_EQ(list().model()->rowCount(), static_cast<int>(view.engine.events().size()));
    append("three");
    view.refresh();
    key(Qt::Key_Home);
    append("four");
    view.refresh();
    settleEvents();
    const auto chosen = list().selectionModel()->selectedIndexes();
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0].row(), 1);
    EXPECT_EQ(line(1), "10:00:00 info: three");
}

TEST_F(LogPageTest, allLinesAreGone)
{
    append("one");
    view.open(SettingsTab::log);
    auto model = view.model();
    auto& rows = std::get<LogTabModel>(model.page).rows;
    const auto all = rows;
    struct Case {
        const char* name;
        std::vector<OverviewModel::LogLine> rows;
    };
    const Case cases[] = {
        {"all gone", {}},
        {"back again", all},
        {"others", {{UUID{{7}}, "11:00:00", GuardEvent::Kind::warning, "other"}}},
        {"one more above, and one gone below",
         {{UUID{{8}}, "11:00:01", GuardEvent::Kind::info, "new"},
          {UUID{{7}}, "11:00:00", GuardEvent::Kind::warning, "other"}}},
        {"the top gone", {{UUID{{7}}, "11:00:00", GuardEvent::Kind::warning, "other"}}},
    };
    QListView& shown = list();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        rows = c.rows;
        view.window.setModel(model);
        settleEvents();
        ASSERT_EQ(shown.model()->rowCount(), static_cast<int>(rows.size()));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(shown.model()->index(static_cast<int>(i), 0).data().toString().toStdString(),
                      LogTabModel::line(rows[i]));
        }
    }
}

TEST_F(LogPageTest, aLongMessageGetsItsLines)
{
    append("short");
    append(std::string(400, 'm'));
    view.open(SettingsTab::log);
    const auto height = [&](int row) { return list().visualRect(list().model()->index(row, 0)).height(); };
    EXPECT_GT(height(0), 2 * height(1));
    EXPECT_LE(list().visualRect(list().model()->index(0, 0)).width(), list().viewport()->width());
}

} // namespace
} // namespace quellon
