#include "QuellonUI/Settings/Form/ButtonAction.h"

#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Theme.h"

namespace quellon {

ButtonAction::ButtonAction(Pressable& button, Tint tint) : QObject(&button), button_(button), tint_(tint)
{
    connect(&button, &Pressable::chosen, this, [this] {
        // A copy: what is done with it may give the button another meaning.
        const SettingsAction action = action_;
        Q_EMIT acted(action);
    });
}

void ButtonAction::setModel(const FormButton& model)
{
    setAction(model.action);
    button_.setEnabled(model.enabled);
    if (auto* const icon = qobject_cast<IconButton*>(&button_)) {
        icon->setSymbol(model.symbol, tint_);
        icon->setLabel(toQString(model.accessibilityLabel));
        return;
    }
    button_.setTitle(toQString(model.title), toQString(model.accessibilityLabel));
    auto* const push = qobject_cast<PushButton*>(&button_);
    if (push != nullptr && push->kind() != PushButton::Kind::primary) {
        push->setKind(model.destructive ? PushButton::Kind::destructive : PushButton::Kind::plain);
    }
}

void ButtonAction::setAction(const SettingsAction& action)
{
    if (action == action_) return;
    action_ = action;
    button_.lapse();
}

} // namespace quellon
