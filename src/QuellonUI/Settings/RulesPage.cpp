#include "QuellonUI/Settings/RulesPage.h"

#include "QuellonCore/Presentation/SettingsSymbols.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/Headline.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QMenu>
#include <QVBoxLayout>

namespace quellon {

RulesPage::RulesPage(QWidget* parent)
    : FormView(parent),
      headline_(new Headline{this}),
      blocked_(new RemarkView{Tint::secondary, this}),
      risk_(new RemarkView{Tint::orange, this}),
      card_(new Card{this}),
      rowColumn_(new QVBoxLayout{card_}),
      rows_(
          *rowColumn_, [this] { return makeRow(); },
          [](const auto& one, const auto& other) { return one.rule == other.rule; }),
      add_(new MenuButton{Fonts::body(), this}),
      steppingRow_(new FormRow),
      steppingIn_(new ChoiceBox)
{
    SettingsMetrics::setRows(*rowColumn_);
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setPage(*column);
    for (QWidget* const each : {static_cast<QWidget*>(headline_), static_cast<QWidget*>(blocked_),
                                static_cast<QWidget*>(risk_), static_cast<QWidget*>(card_)}) {
        column->addWidget(each);
    }
    column->addWidget(add_, 0, Qt::AlignLeft);
    auto* const stepping = new FormCard{this};
    steppingRow_->addControl(*steppingIn_);
    stepping->addRow(*steppingRow_);
    column->addWidget(stepping);
    column->addStretch(1);
    add_->setTitle(toQString(RulesTabModel::addTitle));
    add_->setSymbols({}, SettingsSymbols::opensMenu);
    add_->setGround();
    relay(steppingIn_);
}

RuleRow* RulesPage::makeRow()
{
    auto* const row = new RuleRow{card_};
    relay(row);
    return row;
}

void RulesPage::setModel(const RulesTabModel& model)
{
    const bool sameMenu = model.add == model_.add;
    model_ = model;
    headline_->setModel(model_.headline);
    blocked_->setModel(model_.blocked);
    risk_->setModel(model_.risk);
    card_->setVisible(!model_.rows.empty());
    if (rows_.setModels(model_.rows)) FocusOrder::follow(*window());
    if (!sameMenu) fillMenu();
    steppingRow_->setLabel(toQString(model_.steppingIn.label));
    steppingIn_->setModel(model_.steppingIn);
}

void RulesPage::fillMenu()
{
    add_->menu().clear();
    for (const FormButton& each : model_.add) {
        QAction* const item = add_->menu().addAction(toQString(each.title));
        connect(item, &QAction::triggered, this, [this, action = each.action] { Q_EMIT acted(action); });
    }
}

} // namespace quellon
