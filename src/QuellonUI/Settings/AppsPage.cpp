#include "QuellonUI/Settings/AppsPage.h"

#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int emptySymbolSize = 36;

} // namespace

AppsPage::AppsPage(QWidget* parent)
    : FormView(parent),
      intro_(new Paragraph{Fonts::caption(), this}),
      empty_(new Card{this}),
      emptySymbol_(new SymbolLabel{emptySymbolSize, empty_}),
      emptyTitle_(new Paragraph{Fonts::subheadline(), empty_}),
      emptyText_(new Paragraph{Fonts::caption(), empty_}),
      card_(new Card{this}),
      rowColumn_(new QVBoxLayout{card_}),
      rows_(
          *rowColumn_, [this] { return makeRow(); },
          [](const auto& one, const auto& other) { return one.details.action == other.details.action; }),
      add_(new PushButton{Fonts::body(), this}),
      addDevTools_(new PushButton{Fonts::body(), this})
{
    SettingsMetrics::setRows(*rowColumn_);
    arrangeEmpty();
    intro_->setTint(Tint::secondary);
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setPage(*column);
    column->addWidget(intro_);
    column->addWidget(empty_);
    column->addWidget(card_);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(add_.button);
    buttons->addWidget(addDevTools_.button);
    buttons->addStretch(1);
    column->addLayout(buttons);
    column->addStretch(1);
    relay(add_.action);
    relay(addDevTools_.action);
}

void AppsPage::arrangeEmpty()
{
    constexpr int padding = 28;
    auto* const column = new QVBoxLayout{empty_};
    column->setContentsMargins(padding, padding, padding, padding);
    column->addWidget(emptySymbol_, 0, Qt::AlignHCenter);
    column->addWidget(emptyTitle_);
    column->addWidget(emptyText_);
    for (Paragraph* const each : {emptyTitle_, emptyText_}) each->setAlignment(Qt::AlignHCenter);
    emptyText_->setTint(Tint::secondary);
}

AppRow* AppsPage::makeRow()
{
    auto* const row = new AppRow{card_};
    relay(row);
    return row;
}

void AppsPage::setModel(const AppsTabModel& model)
{
    intro_->setText(toQString(AppsTabModel::intro));
    if (model.empty) showEmpty(*model.empty);
    empty_->setVisible(model.empty.has_value());
    card_->setVisible(!model.rows.empty());
    if (rows_.setModels(model.rows)) FocusOrder::follow(*window());
    add_.setModel(model.add);
    addDevTools_.setModel(model.addDevTools);
}

void AppsPage::showEmpty(const AppsTabModel::Empty& empty)
{
    emptySymbol_->setSymbol(empty.symbol, Tint::secondary);
    emptyTitle_->setText(toQString(empty.title));
    emptyText_->setText(toQString(empty.text));
}

} // namespace quellon
