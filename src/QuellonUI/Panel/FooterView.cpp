#include "QuellonUI/Panel/FooterView.h"

#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PanelLink.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>

namespace quellon {

FooterView::FooterView(QWidget* parent) : QWidget(parent), layout_(new QHBoxLayout{this})
{
    constexpr int side = PanelLayout::reach - LinkButton::sidePadding;
    layout_->setContentsMargins(side, 0, side, 0);
    layout_->setSpacing(0);
}

void FooterView::makeButtons(std::size_t count)
{
    while (buttons_.size() < count) {
        // As much room as there is between each two, so that the last one stands at the right.
        if (!buttons_.empty()) layout_->addStretch(1);
        auto* const button = new PanelLink{Fonts::callout(), this};
        button->setTint(Tint::primary);
        connect(button, &PanelLink::acted, this, &FooterView::acted);
        layout_->addWidget(button);
        buttons_.push_back(button);
    }
}

void FooterView::setModel(const std::vector<PanelButton>& model)
{
    if (model == model_) return;
    model_ = model;
    makeButtons(model.size());
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        if (i < model.size()) buttons_[i]->setModel(model[i]);
        buttons_[i]->setVisible(i < model.size());
    }
}

std::vector<QWidget*> FooterView::stops() const
{
    return {buttons_.begin(), buttons_.end()};
}

} // namespace quellon
