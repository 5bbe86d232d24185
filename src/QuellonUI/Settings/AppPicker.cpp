#include "QuellonUI/Settings/AppPicker.h"

#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Settings/Form/FocusOrder.h"
#include "QuellonUI/Settings/Form/PageScroll.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

namespace quellon {

AppPicker::AppPicker(QWidget* parent)
    : FormView(parent),
      title_(new TextLabel{Fonts::title(), this}),
      text_(new Paragraph{Fonts::caption(), this}),
      filter_(new FieldEdit{this}),
      list_(new QWidget),
      scroll_(new PageScroll{*list_, this}),
      rowColumn_(new QVBoxLayout),
      rows_(
          *rowColumn_, [this] { return makeRow(); },
          [](const auto& one, const auto& other) { return one.details.action == other.details.action; }),
      cancel_(new PushButton{Fonts::body(), this})
{
    title_->setText(toQString(AppPickerModel::title));
    setWindowTitle(title_->text()); // The sheet's name.
    text_->setText(toQString(AppPickerModel::text));
    text_->setTint(Tint::secondary);
    arrange();
    connect(filter_, &FieldEdit::typed, this,
            [this](const QString& text) { Q_EMIT acted(SettingsActions::FilterPicker{text.toStdString()}); });
    relay(cancel_.action);
}

void AppPicker::arrange()
{
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setSheet(*column);
    column->addWidget(title_);
    column->addWidget(text_);
    column->addWidget(filter_);
    SettingsMetrics::setRows(*rowColumn_);
    auto* const listColumn = new QVBoxLayout{list_};
    listColumn->setContentsMargins(0, 0, 0, 0);
    listColumn->addLayout(rowColumn_);
    listColumn->addStretch(1);
    auto* const card = new Card{this};
    auto* const inside = new QVBoxLayout{card};
    inside->setContentsMargins(1, 1, 1, 1);
    inside->addWidget(scroll_);
    column->addWidget(card, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel_.button);
    cancel_.button->raise(); // It is the last that is read out.
    column->addLayout(buttons);
}

CandidateRow* AppPicker::makeRow()
{
    auto* const row = new CandidateRow{list_};
    relay(row);
    return row;
}

void AppPicker::setModel(const AppPickerModel& model)
{
    filter_->setPlaceholderText(toQString(model.filter.label));
    const QString name = toQString(model.filter.accessibilityLabel);
    if (filter_->accessibleName() != name) filter_->setAccessibleName(name);
    filter_->setModelText(toQString(model.filter.text));
    if (rows_.setModels(model.rows)) FocusOrder::follow(*window());
    cancel_.setModel(model.cancel);
}

void AppPicker::showEvent(QShowEvent* event)
{
    FormView::showEvent(event);
    scroll_->verticalScrollBar()->setValue(0);
}

QSize AppPicker::sizeHint() const
{
    constexpr QSize usual{460, 460};
    return usual;
}

} // namespace quellon
