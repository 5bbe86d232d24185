#pragma once

#include "QuellonCore/Presentation/FormControls.h"
#include "QuellonCore/Presentation/Tint.h"
#include "QuellonUI/Kit/Pressable.h"

#include <QObject>

namespace quellon {

/// What a button stands for, as a child of the button. That may change under the user's finger: a press that began
/// when the button stood for something else does not count.
class ButtonAction final : public QObject {
    Q_OBJECT
public:
    /// `tint` is for a button that is a symbol.
    explicit ButtonAction(Pressable& button, Tint tint = Tint::secondary);

    /// The button gets what the model says of it.
    void setModel(const FormButton& model);
    /// For what has no title of its own, such as a switch.
    void setAction(const SettingsAction& action);

Q_SIGNALS:
    /// The button was pressed.
    void acted(const SettingsAction& action);

private:
    Pressable& button_;
    Tint tint_;
    SettingsAction action_;
};

/// The button and what it stands for.
template <typename Button>
struct FormPress {
    Button* button = nullptr;
    ButtonAction* action = nullptr;

    /// Takes a new button, which gets an owner with its layout.
    explicit FormPress(Button* made, Tint tint = Tint::secondary) : button(made), action(new ButtonAction{*made, tint})
    {
    }

    void setModel(const FormButton& model) const { action->setModel(model); }
    /// Without a model the button is not there.
    void setModel(const std::optional<FormButton>& model) const
    {
        if (model) action->setModel(*model);
        button->setVisible(model.has_value());
    }
};

} // namespace quellon
