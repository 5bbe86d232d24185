#include "QuellonUI/Panel/LivenessView.h"

#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Theme.h"

#include <QFontMetrics>
#include <QHBoxLayout>

#include <algorithm>

namespace quellon {

namespace {

constexpr int leastSpacing = 2;
constexpr int symbolSide = 13;

} // namespace

LivenessView::LivenessView(QWidget* parent)
    : QWidget(parent), layout_(new QHBoxLayout{this}), symbol_(new SymbolLabel{symbolSide, this})
{
    layout_->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
    const int blank = QFontMetrics{Fonts::caption2()}.horizontalAdvance(QLatin1Char{' '});
    layout_->setSpacing(std::max(blank, leastSpacing));
    layout_->addWidget(symbol_);
    layout_->addStretch(1);
    symbol_->hide();
}

void LivenessView::setModel(const LivenessRowModel& model)
{
    if (model == model_) return;
    model_ = model;
    symbol_->setSymbol(model.symbol, Tint::secondary);
    symbol_->setVisible(!model.symbol.empty());
    while (texts_.size() < model.texts.size()) {
        texts_.push_back(new TextLabel{Fonts::caption2(), this});
        layout_->insertWidget(static_cast<int>(texts_.size()), texts_.back());
    }
    // What stands out may be long; where nothing does, the end gives way.
    const auto strong = std::find_if(model.texts.begin(), model.texts.end(),
                                     [](const LivenessRowModel::Text& each) { return each.tint == Tint::primary; });
    const auto last = model.texts.empty() ? model.texts.end() : std::prev(model.texts.end());
    const auto elastic = static_cast<std::size_t>((strong != model.texts.end() ? strong : last) - model.texts.begin());
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        texts_[i]->setVisible(i < model.texts.size());
        if (i >= model.texts.size()) continue;
        texts_[i]->setText(toQString(model.texts[i].text));
        texts_[i]->setTint(model.texts[i].tint);
        texts_[i]->setElastic(i == elastic);
    }
}

} // namespace quellon
