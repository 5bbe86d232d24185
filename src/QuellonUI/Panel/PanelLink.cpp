#include "QuellonUI/Panel/PanelLink.h"

#include "QuellonUI/Theme.h"

namespace quellon {

PanelLink::PanelLink(const QFont& font, QWidget* parent) : LinkButton(font, parent)
{
    connect(this, &Pressable::chosen, this, [this] {
        // A copy: what is done with it may give the button another meaning.
        const PanelAction action = model_.action;
        Q_EMIT acted(action);
    });
}

void PanelLink::setModel(const PanelButton& model)
{
    if (model == model_) return;
    if (model.action != model_.action) lapse();
    model_ = model;
    setTitle(toQString(model.title), toQString(model.accessibilityLabel));
    setSymbol(model.symbol);
    setEnabled(model.enabled);
}

} // namespace quellon
