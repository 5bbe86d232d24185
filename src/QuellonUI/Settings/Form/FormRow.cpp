#include "QuellonUI/Settings/Form/FormRow.h"

#include "QuellonUI/Kit/Divider.h"
#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int cardPadding = 14;
constexpr int cardEnd = 4;
constexpr int controlGap = 8;
constexpr int leastHeight = 30;
constexpr int headingSpace = 7;
constexpr const char* dividerKey = "dividerAbove";

} // namespace

void setOptional(Paragraph& paragraph, const std::optional<std::string>& text)
{
    if (text) paragraph.setText(toQString(*text));
    paragraph.setVisible(text.has_value());
}

FormRow::FormRow(QWidget* parent)
    : QWidget(parent),
      label_(new TextLabel{Fonts::body(), this}),
      line_(new QHBoxLayout),
      column_(new QVBoxLayout{this})
{
    column_->setContentsMargins(0, SettingsMetrics::rowPadding, 0, SettingsMetrics::rowPadding);
    column_->setSpacing(4);
    column_->addLayout(line_);
    line_->setSpacing(controlGap);
    line_->addStrut(leastHeight);
    line_->addWidget(label_, 1);
}

void FormRow::setLabel(const QString& label)
{
    label_->setText(label);
}

void FormRow::addControl(QWidget& control)
{
    line_->addWidget(&control);
}

void FormRow::addBelow(QWidget& widget)
{
    column_->addWidget(&widget);
}

FormCard::FormCard(QWidget* parent) : QWidget(parent), card_(new Card{this}), column_(new QVBoxLayout{card_})
{
    auto* const around = new QVBoxLayout{this};
    around->setContentsMargins(0, 0, 0, 0);
    around->addWidget(card_);
    column_->setContentsMargins(cardPadding, cardEnd, cardPadding, cardEnd);
    column_->setSpacing(0);
}

void FormCard::setHeading(const QString& heading)
{
    auto* const label = new TextLabel{Fonts::section(), card_};
    label->setTint(Tint::secondary);
    label->setText(heading);
    label->setContentsMargins(0, headingSpace, 0, 0);
    column_->insertWidget(0, label);
    hasHeading_ = true;
}

void FormCard::addRow(QWidget& row)
{
    if (column_->count() > (hasHeading_ ? 1 : 0)) {
        auto* const divider = new Divider{card_};
        divider->setVisible(!row.isHidden());
        column_->addWidget(divider);
        row.setProperty(dividerKey, QVariant::fromValue<QWidget*>(divider));
        row.installEventFilter(this);
    }
    column_->addWidget(&row);
}

bool FormCard::eventFilter(QObject* watched, QEvent* event)
{
    const bool shown = event->type() == QEvent::ShowToParent;
    if (shown || event->type() == QEvent::HideToParent) {
        if (auto* const divider = watched->property(dividerKey).value<QWidget*>()) divider->setVisible(shown);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace quellon
