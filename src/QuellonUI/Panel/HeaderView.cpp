#include "QuellonUI/Panel/HeaderView.h"

#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/Switch.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Symbols.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

/// What the dot's halo and the switch's focus ring take beyond what is seen of them.
constexpr int halo = 3;

} // namespace

HeaderView::HeaderView(QWidget* parent)
    : QWidget(parent),
      dot_(new StatusDot{this}),
      title_(new TextLabel{Fonts::title(), this}),
      detail_(new TextLabel{Fonts::caption(), this}),
      toggle_(new Switch{this})
{
    constexpr int lineSpacing = 3;
    constexpr int dotSpacing = 6;
    constexpr int switchSpacing = 12;
    detail_->setTint(MenuPanelModel::quietTint);
    auto* const line = new QHBoxLayout;
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(dotSpacing - halo);
    line->addWidget(dot_);
    line->addWidget(title_, 1);
    auto* const below = new QHBoxLayout;
    below->setContentsMargins(halo, 0, 0, 0);
    below->addWidget(detail_);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(lineSpacing);
    texts->addLayout(line);
    texts->addLayout(below);
    auto* const layout = new QHBoxLayout{this};
    layout->setContentsMargins(PanelLayout::reach - halo, 0, PanelLayout::reach - halo, 0);
    layout->setSpacing(switchSpacing - halo);
    layout->addLayout(texts, 1);
    layout->addWidget(toggle_, 0, Qt::AlignVCenter);
    connect(toggle_, &Pressable::chosen, this, [this] {
        const PanelAction action = model_.toggle.action;
        Q_EMIT acted(action);
    });
}

void HeaderView::setModel(const MenuPanelModel::Header& model)
{
    if (model == model_) return;
    if (model.toggle.action != model_.toggle.action) toggle_->lapse();
    model_ = model;
    dot_->setTint(model.tint);
    title_->setText(toQString(model.title));
    detail_->setText(withDrawableSymbols(toQString(model.detail), detail_->font()));
    toggle_->setOn(model.isOn);
    toggle_->setEnabled(model.toggle.enabled);
    toggle_->setTitle(toQString(model.toggle.title), toQString(model.toggle.accessibilityLabel));
}

std::vector<QWidget*> HeaderView::stops() const
{
    return {toggle_};
}

} // namespace quellon
