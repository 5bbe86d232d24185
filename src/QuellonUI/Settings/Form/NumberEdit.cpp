#include "QuellonUI/Settings/Form/NumberEdit.h"

#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>

#include <algorithm>

namespace quellon {

NumberEdit::NumberEdit(QWidget* parent)
    : FormView(parent),
      edit_(new FieldEdit{this}),
      suffix_(new TextLabel{Fonts::body(), this}),
      refusal_(new Paragraph{Fonts::caption(), this})
{
    constexpr int gap = 6;
    constexpr int digits = 9;
    auto* const layout = new QHBoxLayout{this};
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    layout->addWidget(edit_);
    layout->addWidget(suffix_);
    // Room for the same digits in a larger font.
    edit_->setFixedWidth(std::max(FormNumber::width, digits * edit_->fontMetrics().averageCharWidth()));
    edit_->setAlignment(Qt::AlignRight);
    refusal_->setTint(Tint::red);
    refusal_->setAlignment(Qt::AlignRight);
    refusal_->hide();
    connect(edit_, &FieldEdit::typed, this, [this](const QString& text) {
        Q_EMIT acted(SettingsActions::EditNumber{model_.field, text.toStdString()});
    });
    connect(edit_, &FieldEdit::finished, this, [this] { Q_EMIT acted(SettingsActions::CommitNumber{model_.field}); });
}

void NumberEdit::setModel(const FormNumber& model)
{
    // The text is the only part that the user changes. To tell the rest again would tell screen readers of it again.
    edit_->setModelText(toQString(model.text));
    if (model == model_) return;
    model_ = model;
    edit_->setPlaceholderText(toQString(model_.prompt));
    const QString name = toQString(model_.accessibilityLabel);
    if (edit_->accessibleName() != name) edit_->setAccessibleName(name);
    const QString description = toQString(model_.refusal.value_or(""));
    if (edit_->accessibleDescription() != description) edit_->setAccessibleDescription(description);
    edit_->setRefused(model_.refusal.has_value());
    suffix_->setText(toQString(model_.suffix));
    setOptional(*refusal_, model_.refusal);
}

} // namespace quellon
