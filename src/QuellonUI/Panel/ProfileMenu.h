#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"
#include "QuellonUI/Kit/MenuButton.h"

#include <optional>

class QActionGroup;

namespace quellon {

/// The active plan's name, which opens a menu of all plans.
class ProfileMenu final : public MenuButton {
    Q_OBJECT
public:
    explicit ProfileMenu(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown. Without a switcher there is nothing to see.
    void setModel(const std::optional<MenuPanelModel::ProfileSwitcher>& model);

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    std::optional<MenuPanelModel::ProfileSwitcher> model_;
    QActionGroup* one_; ///< Of the menu's items one is the active plan's.

    void showItems();
};

} // namespace quellon
