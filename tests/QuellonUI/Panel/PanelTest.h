#pragma once

#include "QuellonUI/Kit/Accessibility.h"
#include "QuellonUI/Kit/Appearance.h"
#include "QuellonUI/Kit/Bar.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Kit/TextRuns.h"
#include "QuellonUI/Panel/MenuContent.h"
#include "QuellonUI/Panel/MenuPanel.h"
#include "QuellonUI/Theme.h"

#include "../PaintCounter.h"
#include "PanelModels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <string>
#include <vector>

namespace quellon {

/// Lets everything that is waiting happen.
inline void letItHappen()
{
    for (int i = 0; i < 5; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

inline void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& at)
{
    const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event{type, QPointF{at}, QPointF{widget.mapToGlobal(at)}, button, buttons, Qt::NoModifier};
    QApplication::sendEvent(&widget, &event);
}

inline void press(QWidget& widget, int key)
{
    QKeyEvent down{QEvent::KeyPress, key, Qt::NoModifier};
    QApplication::sendEvent(&widget, &down);
    QKeyEvent up{QEvent::KeyRelease, key, Qt::NoModifier};
    QApplication::sendEvent(&widget, &up);
}

/// A panel that is open, and what it reports.
class PanelTest : public testing::Test {
protected:
    MenuPanel panel;
    std::vector<PanelAction> acted;

    PanelTest()
    {
        Appearance::apply(false);
        Accessibility::install();
        QObject::connect(&panel, &MenuPanel::acted, &panel,
                         [this](const PanelAction& action) { acted.push_back(action); });
    }

    void open(const MenuPanelModel& model)
    {
        panel.setModel(model);
        panel.openAt({600, 5}, {0, 0, 800, 800});
        letItHappen();
    }
    /// Closes it, and another window gets the keyboard.
    void dismiss()
    {
        panel.dismiss();
        elsewhere_.show();
        elsewhere_.activateWindow();
        letItHappen();
    }
    void show(const MenuPanelModel& model)
    {
        panel.setModel(model);
        letItHappen();
    }
    [[nodiscard]] MenuContent& content() const { return *panel.findChild<MenuContent*>(); }
    /// What a screen reader calls the widget.
    [[nodiscard]] static std::string nameOf(QWidget& widget)
    {
        return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name).toStdString();
    }
    [[nodiscard]] static QAccessible::Role roleOf(QWidget& widget)
    {
        return QAccessible::queryAccessibleInterface(&widget)->role();
    }
    /// The visible buttons of this accessible name.
    [[nodiscard]] std::vector<QAbstractButton*> buttons(const std::string& name) const
    {
        std::vector<QAbstractButton*> result;
        for (QAbstractButton* const each : panel.findChildren<QAbstractButton*>()) {
            if (each->isVisible() && nameOf(*each) == name) result.push_back(each);
        }
        return result;
    }
    [[nodiscard]] QAbstractButton* button(const std::string& name) const
    {
        const auto found = buttons(name);
        return found.empty() ? nullptr : found.front();
    }
    /// The first visible label of this text; null without one.
    [[nodiscard]] TextLabel* label(const std::string& text) const
    {
        for (TextLabel* const each : panel.findChildren<TextLabel*>()) {
            if (each->isVisible() && each->text() == toQString(text)) return each;
        }
        return nullptr;
    }
    /// The visible line of this text; null without one.
    [[nodiscard]] TextRuns* runs(const std::string& text) const
    {
        for (TextRuns* const each : panel.findChildren<TextRuns*>()) {
            if (each->isVisible() && each->text() == toQString(text)) return each;
        }
        return nullptr;
    }
    /// The visible bar of this accessible name; null without one.
    [[nodiscard]] Bar* bar(const std::string& name) const
    {
        for (Bar* const each : panel.findChildren<Bar*>()) {
            if (each->isVisible() && each->accessibleName() == toQString(name)) return each;
        }
        return nullptr;
    }
    /// All texts that can be seen, from the top to the bottom and from the left to the right.
    [[nodiscard]] std::vector<std::string> texts() const
    {
        struct Text {
            int middle;
            int left;
            std::string text;
        };
        std::vector<Text> found;
        for (QWidget* const each : content().findChildren<QWidget*>()) {
            const std::string text = textOf(*each);
            if (!each->isVisible() || text.empty()) continue;
            const QPoint at = each->mapTo(&content(), QPoint{0, each->height() / 2});
            found.push_back({at.y(), at.x(), text});
        }
        const auto isBefore = [](const Text& one, const Text& other) {
            constexpr int oneLine = 6;
            const bool beside = std::abs(one.middle - other.middle) < oneLine;
            return beside ? one.left < other.left : one.middle < other.middle;
        };
        std::stable_sort(found.begin(), found.end(), isBefore);
        std::vector<std::string> result;
        for (const Text& each : found) result.push_back(each.text);
        return result;
    }
    /// Whether all of the texts are to be seen, in this order.
    void expectInOrder(const std::vector<std::string>& wanted) const
    {
        const auto shown = texts();
        auto at = shown.begin();
        for (const std::string& each : wanted) {
            const auto found = std::find(at, shown.end(), each);
            EXPECT_NE(found, shown.end()) << each;
            if (found != shown.end()) at = found + 1;
        }
    }
    /// The accessible names of what Tab goes through from the opened panel on, until it begins again.
    [[nodiscard]] std::vector<std::string> tabWalk()
    {
        std::vector<std::string> result;
        constexpr std::size_t most = 100;
        while (result.size() < most) {
            QWidget* const focused = QApplication::focusWidget();
            press(focused != nullptr ? *focused : panel, Qt::Key_Tab);
            if (QApplication::focusWidget() == nullptr) break;
            const std::string name = nameOf(*QApplication::focusWidget());
            if (!result.empty() && QApplication::focusWidget() == first_) break;
            if (result.empty()) first_ = QApplication::focusWidget();
            result.push_back(name);
        }
        return result;
    }

private:
    QWidget elsewhere_;
    QWidget* first_ = nullptr;

    [[nodiscard]] static std::string textOf(QWidget& widget)
    {
        if (auto* const label = qobject_cast<QLabel*>(&widget)) return label->text().toStdString();
        if (auto* const runs = qobject_cast<TextRuns*>(&widget)) return runs->text().toStdString();
        if (auto* const one = qobject_cast<QAbstractButton*>(&widget)) {
            return one->text().replace(QLatin1String{"&&"}, QLatin1String{"&"}).toStdString();
        }
        return {};
    }
};

} // namespace quellon
