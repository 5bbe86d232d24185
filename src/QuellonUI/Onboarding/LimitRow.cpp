#include "QuellonUI/Onboarding/LimitRow.h"

#include "QuellonUI/Theme.h"

#include <QHBoxLayout>

namespace quellon {

LimitRow::LimitRow(QWidget* parent)
    : QWidget(parent),
      over_(new TextLabel{Fonts::body(), this}),
      window_(new TextLabel{Fonts::body(), this}),
      level_(new TextLabel{Fonts::body(), this})
{
    constexpr int gap = 6;
    auto* const line = new QHBoxLayout{this};
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(gap);
    line->addWidget(over_);
    line->addWidget(window_);
    line->addStretch(1);
    line->addWidget(level_);
    for (TextLabel* const each : {window_, level_}) each->setTint(Tint::secondary);
}

void LimitRow::setModel(const OnboardingModel::Limit& model)
{
    over_->setText(toQString(model.over));
    window_->setText(toQString(model.window));
    level_->setText(toQString(model.level));
}

} // namespace quellon
