#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <QWidget>

#include <vector>

namespace quellon {

class StatusDot;
class Switch;
class TextLabel;

/// What the guard does, on which network, and the switch that turns it on and off.
class HeaderView final : public QWidget {
    Q_OBJECT
public:
    explicit HeaderView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const MenuPanelModel::Header& model);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    MenuPanelModel::Header model_;
    StatusDot* dot_;
    TextLabel* title_;
    TextLabel* detail_;
    Switch* toggle_;
};

} // namespace quellon
