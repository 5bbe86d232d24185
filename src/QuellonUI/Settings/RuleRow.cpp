#include "QuellonUI/Settings/RuleRow.h"

#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

RuleRow::RuleRow(QWidget* parent)
    : ListRow(parent),
      enabled_(new Switch{this}),
      window_(new TextLabel{Fonts::body(), this}),
      limit_(new NumberEdit{this}),
      share_(new TextLabel{Fonts::caption(), this}),
      action_(new ChoiceBox{this})
{
    constexpr int gap = 10;
    auto* const names = new QVBoxLayout;
    names->setSpacing(0);
    names->addStretch(1);
    names->addWidget(window_);
    names->addWidget(share_);
    names->addStretch(1);
    share_->setTint(Tint::secondary);

    auto* const line = new QHBoxLayout;
    line->setSpacing(gap);
    line->addWidget(enabled_.button);
    line->addLayout(names, 1);
    line->addWidget(limit_);
    line->addWidget(action_);
    auto* const column = new QVBoxLayout{this};
    column->setContentsMargins(0, SettingsMetrics::rowPadding, 0, SettingsMetrics::rowPadding);
    column->addLayout(line);
    column->addWidget(&limit_->refusal());
    relay(enabled_.action);
    relay(limit_);
    relay(action_);
}

void RuleRow::setModel(const RulesTabModel::Row& model)
{
    model_ = model;
    enabled_.button->setTitle({}, toQString(model_.enabled.accessibilityLabel));
    enabled_.button->setOn(model_.enabled.on);
    enabled_.action->setAction(model_.enabled.action);
    window_->setText(toQString(model_.windowLabel));
    limit_->setModel(model_.limit);
    share_->setText(toQString(model_.share));
    action_->setModel(model_.action);
}

void RuleRow::takeFocus()
{
    enabled_.button->setFocus();
}

} // namespace quellon
