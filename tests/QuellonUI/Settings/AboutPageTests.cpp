#include "SettingsViews.h"

#include "QuellonUI/Kit/Switch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>

namespace quellon {
namespace {

using namespace SettingsActions;
using testing::ElementsAre;

class AboutPageTest : public testing::Test {
protected:
    SettingsView view;
    AboutPageTest() { view.open(SettingsTab::about); }
    static void mouse(QWidget& on, QEvent::Type type)
    {
        const QPointF centre = on.rect().center();
        QMouseEvent event{type, centre, on.mapToGlobal(centre), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier};
        QApplication::sendEvent(&on, &event);
    }
    AboutModel page() const { return std::get<AboutModel>(view.model().page); }
};

TEST_F(AboutPageTest, controlsAndTexts)
{
    for (const std::string& text : {page().name, page().version, page().note}) {
        EXPECT_NE(label(view.window, text), nullptr) << text;
    }
    EXPECT_EQ(page().version, "1.2.0 (7)");
    for (const char* name : {"Website", "Send feedback", "Copy diagnostics"}) {
        ASSERT_NE(named(view.window, name), nullptr) << name;
        EXPECT_EQ(role(named(view.window, name)), QAccessible::Button);
    }
}

TEST_F(AboutPageTest, links)
{
    std::vector<std::string> opened;
    QObject::connect(&view.window, &SettingsWindow::openURL, &view.window,
                     [&](const QUrl& url) { opened.push_back(url.toString(QUrl::FullyEncoded).toStdString()); });
    view.click("Website");
    view.the<Pressable>("Send feedback").setFocus();
    key(Qt::Key_Return);
    EXPECT_THAT(opened, ElementsAre(page().links[0].url, page().links[1].url));
    EXPECT_TRUE(view.actions.empty());
}

TEST_F(AboutPageTest, diagnosticsAreCopied)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    view.click("Copy diagnostics");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), page().diagnostics);
    EXPECT_THAT(view.all<ShowCopied>(), ElementsAre(ShowCopied{true}));
    auto* const button = named<Pressable>(view.window, page().copy.accessibilityLabel.c_str());
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("Copied ✓"));
    QTimer* running = nullptr;
    for (QTimer* const each : view.window.findChildren<QTimer*>()) {
        if (each->isActive() && each->isSingleShot() && each->interval() == 2'000) running = each;
    }
    ASSERT_NE(running, nullptr);
    running->stop();
    ASSERT_TRUE(QMetaObject::invokeMethod(running, "timeout", Qt::DirectConnection));
    EXPECT_THAT(view.all<ShowCopied>(), ElementsAre(ShowCopied{true}, ShowCopied{false}));
    EXPECT_EQ(button->text(), QStringLiteral("Copy diagnostics"));
}

TEST_F(AboutPageTest, eachPressOnTheVersionIsToldOfAndNoOther)
{
    int taps = 0;
    QObject::connect(&view.window, &SettingsWindow::versionTapped, &view.window, [&] { ++taps; });
    QWidget* const version = label(view.window, page().version);
    ASSERT_NE(version, nullptr);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                            QEvent::MouseButtonRelease}) {
        mouse(*version, type);
    }
    EXPECT_EQ(taps, 2);
    QWidget* const note = label(view.window, page().note);
    ASSERT_NE(note, nullptr);
    mouse(*note, QEvent::MouseButtonPress);
    EXPECT_EQ(taps, 2);
}

TEST_F(AboutPageTest, startAtLogin)
{
    EXPECT_EQ(label(view.window, "Start at login"), nullptr) << "nobody knows the session";
    view.state.startsAtLogin = false;
    view.refresh();
    auto& start = view.the<Switch>("Start at login");
    EXPECT_EQ(role(&start), QAccessible::CheckBox);
    EXPECT_FALSE(start.isChecked());
    view.click("Start at login");
    EXPECT_THAT(view.all<SetStartAtLogin>(), ElementsAre(SetStartAtLogin{true}));
    view.state.startsAtLogin = true;
    view.state.startRefusal = "no room";
    view.refresh();
    EXPECT_TRUE(start.isChecked());
    EXPECT_NE(label(view.window, "no room"), nullptr);
}

} // namespace
} // namespace quellon
