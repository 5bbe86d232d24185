#include "QuellonUI/Panel/ProfileMenu.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Theme.h"

#include <QActionGroup>
#include <QMenu>

namespace quellon {

ProfileMenu::ProfileMenu(QWidget* parent) : MenuButton(Fonts::caption(), parent), one_(new QActionGroup{this})
{
    setTint(MenuPanelModel::quietTint);
    hide();
}

void ProfileMenu::setModel(const std::optional<MenuPanelModel::ProfileSwitcher>& model)
{
    if (model == model_) return;
    model_ = model;
    setVisible(model_.has_value());
    menu().hide();
    if (!model_) return;
    setTitle(toQString(model_->name), toQString(model_->accessibilityLabel));
    setAccessibleDescription(toQString(model_->name));
    setSymbols(model_->symbol, model_->menuSymbol);
    showItems();
}

void ProfileMenu::showItems()
{
    menu().clear();
    for (const auto& item : model_->items) {
        // Qt would take an ampersand for the mark of a shortcut.
        const QString title = toQString(item.button.title).replace(QLatin1Char{'&'}, QLatin1String{"&&"});
        QAction* const action = menu().addAction(symbolIcon(item.symbol), title);
        action->setCheckable(true);
        action->setChecked(!item.symbol.empty());
        action->setActionGroup(one_);
        connect(action, &QAction::triggered, this, [this, chosen = item.button.action] { Q_EMIT acted(chosen); });
    }
}

} // namespace quellon
