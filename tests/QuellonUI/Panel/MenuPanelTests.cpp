#include "PanelTest.h"

#include "QuellonUI/Kit/LinkButton.h"
#include "QuellonUI/Panel/ProfileMenu.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#include <malloc.h>
#endif

namespace quellon {
namespace {

using Kind = PanelAction::Kind;
using namespace PanelModels;
using testing::ElementsAre;
using testing::IsEmpty;

class MenuPanelTest : public PanelTest {
protected:
    int opened = 0;
    int closed = 0;

    MenuPanelTest()
    {
        QObject::connect(&panel, &MenuPanel::opened, &panel, [this] { ++opened; });
        QObject::connect(&panel, &MenuPanel::closed, &panel, [this] { ++closed; });
    }
    [[nodiscard]] QScrollBar* visibleScrollBar() const
    {
        for (QScrollBar* const each : panel.findChildren<QScrollBar*>()) {
            if (each->isVisible()) return each;
        }
        return nullptr;
    }
};

TEST_F(MenuPanelTest, isMadeByTheFirstOpening)
{
    panel.setModel(everything());
    EXPECT_THAT(panel.findChildren<QWidget*>(), IsEmpty());
    EXPECT_EQ(opened, 0);
    open(everything());
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(panel.windowTitle(), QStringLiteral("Quellon"));
    EXPECT_EQ(nameOf(panel), "Quellon");
    EXPECT_TRUE(panel.isActiveWindow());
}

TEST_F(MenuPanelTest, standsAtItsPlace)
{
    open(guarding());
    EXPECT_EQ(panel.geometry().topLeft(), QPoint(430, 0));
    EXPECT_EQ(panel.width(), 340);
    panel.openAt({790, 795}, {0, 0, 800, 760});
    letItHappen();
    EXPECT_EQ(panel.geometry().bottomRight(), QPoint(799, 759));
    EXPECT_EQ(opened, 1) << "it was open";
    // What grows at the bottom grows upwards.
    const int height = panel.height();
    show(everything());
    EXPECT_GT(panel.height(), height);
    EXPECT_EQ(panel.geometry().bottomRight(), QPoint(799, 759));
}

TEST_F(MenuPanelTest, heightFollowsTheContentAtOnce)
{
    open(guarding());
    for (const auto& [name, model] : all()) {
        SCOPED_TRACE(name);
        panel.setModel(model);
        const QRect atOnce = panel.geometry();
        const int height = content().height();
        letItHappen();
        EXPECT_EQ(panel.geometry(), atOnce);
        EXPECT_EQ(content().height(), height);
        EXPECT_EQ(content().contentHeight(), height);
        EXPECT_EQ(panel.height(), std::min(height, 800));
    }
    // The same when it is closed meanwhile.
    for (const auto& [name, model] : all()) {
        SCOPED_TRACE(name);
        panel.dismiss();
        panel.setModel(model);
        panel.openAt({600, 5}, {0, 0, 800, 800});
        const QRect atOnce = panel.geometry();
        letItHappen();
        EXPECT_EQ(panel.geometry(), atOnce);
        EXPECT_EQ(content().contentHeight(), content().height());
    }
}

/// Whether each text that can be seen has the room that it needs.
void expectRoomForAll(const QWidget& panel)
{
    for (const QLabel* const each : panel.findChildren<QLabel*>()) {
        if (!each->isVisible()) continue;
        const int needed = each->wordWrap() ? each->heightForWidth(each->width()) : each->sizeHint().height();
        EXPECT_GE(each->height(), needed) << each->text().toStdString();
    }
    for (const TextRuns* const each : panel.findChildren<TextRuns*>()) {
        if (!each->isVisible()) continue;
        EXPECT_GE(each->height(), each->heightForWidth(each->width())) << each->text().toStdString();
    }
    for (const QAbstractButton* const each : panel.findChildren<QAbstractButton*>()) {
        if (!each->isVisible()) continue;
        EXPECT_GE(each->height(), each->sizeHint().height()) << each->text().toStdString();
        EXPECT_LE(each->mapTo(&panel, QPoint{each->width(), 0}).x(), panel.width()) << each->text().toStdString();
    }
    for (const LinkButton* const each : panel.findChildren<LinkButton*>()) {
        if (!each->isVisible()) continue;
        EXPECT_GE(each->width(), each->sizeHint().width()) << each->text().toStdString();
    }
}

TEST_F(MenuPanelTest, noTextIsCutOff)
{
    const QFont usual = QApplication::font();
    for (const double points : {usual.pointSizeF(), 11.0, 14.0, 18.0}) {
        QFont font = usual;
        font.setPointSizeF(points);
        QApplication::setFont(font);
        MenuPanel sized;
        for (const auto& [name, model] : all()) {
            SCOPED_TRACE(fmt::format("{}, {} pt", name, points));
            sized.setModel(model);
            sized.openAt({600, 5}, {0, 0, 800, 2000});
            letItHappen();
            EXPECT_EQ(sized.width(), 340);
            expectRoomForAll(sized);
        }
    }
    QApplication::setFont(usual);
}

TEST_F(MenuPanelTest, escapeClosesFromEverywhere)
{
    open(everything());
    std::vector<QWidget*> places{&panel};
    for (QWidget* const each : content().stops()) places.push_back(each);
    places.push_back(panel.findChild<Paragraph*>());
    ASSERT_GT(places.size(), 8U);
    for (QWidget* const each : places) {
        open(everything());
        EXPECT_TRUE(panel.isVisible());
        each->setFocus();
        press(QApplication::focusWidget() != nullptr ? *QApplication::focusWidget() : panel, Qt::Key_Escape);
        letItHappen();
        EXPECT_FALSE(panel.isVisible());
    }
    EXPECT_EQ(closed, static_cast<int>(places.size()));
    EXPECT_EQ(opened, closed);
}

TEST_F(MenuPanelTest, closesWhenAnotherWindowTakesTheKeyboard)
{
    open(guarding());
    EXPECT_FALSE(panel.closedJustNow());
    QLineEdit other;
    other.show();
    other.activateWindow();
    letItHappen();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(panel.closedJustNow());
    open(guarding());
    EXPECT_FALSE(panel.closedJustNow());
    panel.dismiss();
    EXPECT_EQ(closed, 2);
    panel.dismiss();
    EXPECT_EQ(closed, 2);
    open(guarding());
    panel.close();
    EXPECT_EQ(closed, 3) << "as a window manager does it";
    EXPECT_FALSE(panel.closedJustNow());
}

TEST_F(MenuPanelTest, itsOwnMenuDoesNotCloseIt)
{
    open(everything());
    auto* const profiles = panel.findChild<ProfileMenu*>();
    ASSERT_NE(profiles, nullptr);
    for (const int key : {Qt::Key_Space, Qt::Key_Return}) {
        profiles->setFocus(Qt::TabFocusReason);
        press(*profiles, key);
        letItHappen();
        ASSERT_TRUE(profiles->menu().isVisible());
        QEvent leaves{QEvent::WindowDeactivate};
        QApplication::sendEvent(&panel, &leaves);
        EXPECT_TRUE(panel.isVisible());
        press(profiles->menu(), Qt::Key_Escape);
        letItHappen();
        EXPECT_FALSE(profiles->menu().isVisible());
        panel.activateWindow();
        letItHappen();
        EXPECT_TRUE(panel.isVisible());
    }
    // When the keyboard went elsewhere meanwhile, the panel goes with the menu.
    press(*profiles, Qt::Key_Space);
    letItHappen();
    QLineEdit other;
    other.show();
    other.activateWindow();
    QEvent leaves{QEvent::WindowDeactivate};
    QApplication::sendEvent(&panel, &leaves);
    profiles->menu().hide();
    letItHappen();
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(MenuPanelTest, profilesAreChosenFromTheMenu)
{
    open(everything());
    auto* const profiles = panel.findChild<ProfileMenu*>();
    const auto items = profiles->menu().actions();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0]->text(), QStringLiteral("Pixel 8"));
    EXPECT_EQ(items[1]->text(), QStringLiteral("Travel && work"));
    EXPECT_TRUE(items[0]->isChecked());
    EXPECT_FALSE(items[1]->isChecked());
    EXPECT_FALSE(items[0]->icon().isNull());
    EXPECT_TRUE(items[1]->icon().isNull());
    items[1]->trigger();
    EXPECT_THAT(acted, ElementsAre(PanelAction{Kind::selectProfile, "id-2"}));
    auto model = everything();
    model.profiles->name = "Travel & work";
    std::swap(model.profiles->items[0].symbol, model.profiles->items[1].symbol);
    show(model);
    EXPECT_TRUE(profiles->menu().actions()[1]->isChecked());
    EXPECT_EQ(profiles->menu().actions().size(), 2);
}

TEST_F(MenuPanelTest, tabFollowsTheReadingOrder)
{
    struct Case {
        const char* name;
        MenuPanelModel model;
        std::vector<std::string> order;
    };
    auto reordered = guarding();
    std::swap(reordered.usage.rows[0], reordered.usage.rows[2]);
    expand(reordered.usage.rows[1], "Keeps folders alike.");
    const Case cases[] = {
        {"guarding",
         guarding(),
         {"Guard", "Explain firefox", "Explain syncthing", "Explain apt", "Open settings", "Quit Quellon"}},
        {"everything",
         everything(),
         {"Guard", "How to fix", "Don't show again", "Open download page", "Dismiss update notice",
          "Switch plan profile", "Collapse firefox", "Open details for firefox", "Explain syncthing", "Explain apt",
          "Resume all", "Resume", "Resume", "Open settings", "Quit Quellon"}},
        {"consent",
         warning(),
         {"Guard", "Allow daily update checks", "Decline update checks", "Open settings", "Quit Quellon"}},
        {"off", off(), {"Guard", "Open settings", "Quit Quellon"}},
        {"rows in another order",
         reordered,
         {"Guard", "Explain apt", "Collapse syncthing", "Open details for syncthing", "Explain firefox",
          "Open settings", "Quit Quellon"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        dismiss();
        open(c.model);
        EXPECT_EQ(tabWalk(), c.order);
    }
}

TEST_F(MenuPanelTest, noControlHasTheKeyboardBeforeTheFirstTab)
{
    for (int i = 0; i < 2; ++i) {
        open(guarding());
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        press(*QApplication::focusWidget(), Qt::Key_Space);
        press(*QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_THAT(acted, IsEmpty());
        button("Quit Quellon")->setFocus(Qt::TabFocusReason);
        dismiss();
    }
}

TEST_F(MenuPanelTest, moreThanTheScreenHoldsScrolls)
{
    open(guarding());
    EXPECT_EQ(visibleScrollBar(), nullptr);
    panel.setModel(tall());
    panel.openAt({600, 5}, {0, 0, 800, 500});
    letItHappen();
    EXPECT_EQ(panel.size(), QSize(340, 500));
    EXPECT_GT(content().height(), 500);
    QScrollBar* const bar = visibleScrollBar();
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->maximum(), content().height() - 500);
    EXPECT_EQ(bar->pageStep(), 500);
    EXPECT_EQ(content().width(), 340) << "the bar stands over the padding";
    press(panel, Qt::Key_PageDown);
    EXPECT_GT(bar->value(), 0);
    press(panel, Qt::Key_End);
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_EQ(content().pos().y(), 500 - content().height());
    bar->setValue(10);
    EXPECT_EQ(content().pos().y(), -10);
    // A changed model leaves the place where it was.
    auto changed = tall();
    changed.usage.rows[0].amount = "21.0 MB";
    show(changed);
    EXPECT_EQ(content().pos().y(), -10);
    // Where the keyboard goes can be seen.
    for (int i = 0; i < 40 && nameOf(*QApplication::focusWidget()) != "Quit Quellon"; ++i) {
        press(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    QWidget* const last = QApplication::focusWidget();
    ASSERT_EQ(nameOf(*last), "Quit Quellon");
    EXPECT_TRUE(panel.rect().contains(QRect{last->mapTo(&panel, QPoint{}), last->size()}));
    show(guarding());
    EXPECT_EQ(visibleScrollBar(), nullptr);
    EXPECT_EQ(content().pos().y(), 0);
    panel.dismiss();
    open(tall());
    EXPECT_EQ(content().pos().y(), 0);
}

TEST_F(MenuPanelTest, followsLightAndDark)
{
    open(everything());
    const auto ground = [this] { return panel.grab().toImage().pixelColor(20, panel.height() / 2); };
    EXPECT_EQ(ground(), Theme::light().background);
    Appearance::apply(true);
    letItHappen();
    EXPECT_EQ(ground(), Theme::dark().background);
    for (Paragraph* const each : panel.findChildren<Paragraph*>()) {
        EXPECT_EQ(each->palette().color(QPalette::WindowText), Theme::dark().textTint(each->tint()));
    }
    Appearance::apply(false);
    letItHappen();
    EXPECT_EQ(ground(), Theme::light().background);
}

TEST_F(MenuPanelTest, cornersAreRound)
{
    open(guarding());
    const QImage image = panel.grab().toImage();
    for (const QPoint& corner : {QPoint{0, 0}, QPoint{image.width() - 1, 0}, QPoint{0, image.height() - 1},
                                 QPoint{image.width() - 1, image.height() - 1}}) {
        EXPECT_EQ(image.pixelColor(corner).alpha(), 0);
    }
    EXPECT_EQ(image.pixelColor(170, 5).alpha(), 255);
}

std::size_t allocated()
{
#ifdef M_TRIM_THRESHOLD
    return mallinfo2().uordblks;
#else
    return 0;
#endif
}

TEST_F(MenuPanelTest, openedAThousandTimesItIsAsLargeAsBefore)
{
    const auto models = all();
    const auto cycle = [&](int i) {
        auto model = models[static_cast<std::size_t>(i) % models.size()].model;
        for (auto& row : model.usage.rows) row.toggle.action.target += fmt::format(" {}", i % 31);
        panel.setModel(model);
        panel.openAt({600, i % 2 == 0 ? 5 : 790}, {0, 0, 800, i % 3 == 0 ? 800 : 400});
        QApplication::processEvents();
        if (i % 5 == 0) button("Open settings")->click();
        panel.dismiss();
        QApplication::processEvents();
    };
    constexpr int warmUp = 100;
    constexpr int cycles = 1000;
    for (int i = 0; i < warmUp; ++i) cycle(i);
    const auto objects = panel.findChildren<QObject*>().size();
    const auto widgets = QApplication::allWidgets().size();
    const std::size_t before = allocated();
    for (int i = 0; i < cycles; ++i) cycle(i);
    EXPECT_EQ(panel.findChildren<QObject*>().size(), objects);
    EXPECT_EQ(QApplication::allWidgets().size(), widgets);
    constexpr std::size_t most = 64 * 1024;
    EXPECT_LE(allocated(), before + most);
    RecordProperty("grownBytes", std::to_string(static_cast<long long>(allocated()) - static_cast<long long>(before)));
    EXPECT_EQ(opened, warmUp + cycles);
    EXPECT_EQ(closed, warmUp + cycles);
}

} // namespace
} // namespace quellon
