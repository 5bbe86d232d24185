#include "QuellonUI/Panel/NoticeRowView.h"

#include "QuellonUI/Kit/FlowLayout.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Panel/PanelLayout.h"
#include "QuellonUI/Panel/PanelLink.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int symbolSide = 18;
constexpr int symbolGap = 8;
constexpr int buttonGap = 8;

} // namespace

NoticeRowView::NoticeRowView(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel{symbolSide, this}),
      title_(new Paragraph{Fonts::subheadline(), this}),
      text_(new Paragraph{Fonts::caption(), this}),
      steps_(new Paragraph{Fonts::caption(), this}),
      buttonLayout_(new FlowLayout{buttonGap, PanelLayout::textSpacing})
{
    text_->setTint(MenuPanelModel::quietTint);
    steps_->hide();
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(PanelLayout::textSpacing);
    texts->addWidget(title_);
    texts->addWidget(text_);
    texts->addWidget(steps_);
    // The text of the first link stands below the text above it.
    constexpr int indent = PanelLayout::reach + symbolSide + symbolGap - LinkButton::sidePadding;
    buttonLayout_->setContentsMargins(indent, 0, PanelLayout::reach - LinkButton::sidePadding, 0);
    auto* const upper = new QHBoxLayout;
    upper->setContentsMargins(PanelLayout::reach, 0, PanelLayout::reach, 0);
    upper->setSpacing(symbolGap);
    upper->addWidget(symbol_, 0, Qt::AlignTop);
    upper->addLayout(texts, 1);
    auto* const layout = new QVBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(PanelLayout::textSpacing);
    layout->addLayout(upper);
    layout->addLayout(buttonLayout_);
}

void NoticeRowView::setModel(const std::optional<MenuPanelModel::NoticeRow>& model)
{
    if (!model || *model == model_) return;
    model_ = *model;
    symbol_->setSymbol(model_.symbol, model_.symbolTint);
    title_->setText(toQString(model_.title));
    text_->setText(toQString(model_.text));
    steps_->setText(toQString(model_.steps.value_or("")));
    steps_->setVisible(model_.steps.has_value());
    showButtons();
}

void NoticeRowView::showButtons()
{
    while (buttons_.size() < model_.buttons.size()) {
        auto* const button = new PanelLink{Fonts::callout(), this};
        connect(button, &PanelLink::acted, this, &NoticeRowView::acted);
        buttonLayout_->addWidget(button);
        buttons_.push_back(button);
    }
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        if (i < model_.buttons.size()) buttons_[i]->setModel(model_.buttons[i]);
        buttons_[i]->setVisible(i < model_.buttons.size());
    }
}

std::vector<QWidget*> NoticeRowView::stops() const
{
    return {buttons_.begin(), buttons_.end()};
}

} // namespace quellon
