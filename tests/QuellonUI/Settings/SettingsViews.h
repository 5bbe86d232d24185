#pragma once

#include "QuellonCore/Presentation/SettingsWorld.h"
#include "QuellonUI/Kit/Pressable.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/FieldEdit.h"
#include "QuellonUI/Settings/SettingsWindow.h"
#include "QuellonUI/Theme.h"

#include "../PaintCounter.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>

#include <string>
#include <vector>

namespace quellon {

inline void settleEvents()
{
    for (int i = 0; i < 3; ++i) {
        QApplication::sendPostedEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
}

/// The widget of this kind and accessible name that can be seen in `root`; null without one.
template <typename Widget = QWidget>
Widget* named(const QWidget& root, const char* name)
{
    for (Widget* const each : root.findChildren<Widget*>()) {
        if (each->isVisible() && each->accessibleName() == QString::fromUtf8(name)) return each;
    }
    return nullptr;
}

/// The label that shows this text; null when none does.
inline QLabel* label(const QWidget& root, const std::string& text)
{
    for (QLabel* const each : root.findChildren<QLabel*>()) {
        if (each->isVisible() && each->text().toStdString() == text) return each;
    }
    return nullptr;
}

inline QAccessible::Role role(QWidget* widget)
{
    return QAccessible::queryAccessibleInterface(widget)->role();
}

/// Presses a key where the focus is.
inline void key(int code, Qt::KeyboardModifiers modifiers = {}, const QString& text = {})
{
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event{type, code, modifiers, text};
        if (QWidget* const focus = QApplication::focusWidget()) QApplication::sendEvent(focus, &event);
    }
}

/// Types a text into a field, in the place of what is there.
inline void typeInto(QLineEdit& field, const char* text)
{
    field.setFocus();
    field.selectAll();
    if (*text == '\0') key(Qt::Key_Delete);
    for (const QChar each : QString::fromUtf8(text)) key(0, {}, QString{each});
}

/// Chooses as a user does who has opened the box's list.
inline void choose(QComboBox& box, int index)
{
    box.setCurrentIndex(index);
    Q_EMIT box.activated(index);
}

/// A settings window on a running guard: what is done in it is carried out at once, and shown.
struct SettingsView : SettingsWorld {
    std::vector<SettingsAction> actions; ///< What was done.
    SettingsWindow window;

    explicit SettingsView(const Platform& platform = Platform::macOS()) : SettingsWorld{platform}
    {
        QApplication::setCursorFlashTime(0);
        QObject::connect(&window, &SettingsWindow::acted, &window, [this](const SettingsAction& action) {
            actions.push_back(action);
            does(action);
            refresh();
        });
    }

    [[nodiscard]] SettingsModel model() const
    {
        return SettingsModel::of(engine, state, {"1.2.0", "7", "14.5.0"}, host.now());
    }
    void refresh() { window.setModel(model()); }
    /// Opens the window on a page.
    void open(SettingsTab tab)
    {
        state.tab = tab;
        refresh();
        window.show();
        window.activateWindow();
        settleEvents();
    }
    /// The control of this accessible name; fails the test without one.
    template <typename Widget>
    Widget& the(const char* name)
    {
        Widget* const found = named<Widget>(window, name);
        if (found == nullptr) throw std::runtime_error{std::string{"no control: "} + name};
        return *found;
    }
    /// Clicks the button of this accessible name.
    void click(const char* name)
    {
        the<Pressable>(name).click();
        settleEvents();
    }
    template <typename Action>
    [[nodiscard]] std::vector<Action> all() const
    {
        std::vector<Action> result;
        for (const auto& each : actions) {
            if (const auto* const action = std::get_if<Action>(&each)) result.push_back(*action);
        }
        return result;
    }
};

} // namespace quellon
