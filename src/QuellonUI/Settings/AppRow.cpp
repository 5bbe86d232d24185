#include "QuellonUI/Settings/AppRow.h"

#include "QuellonUI/Theme.h"

#include <QHBoxLayout>

namespace quellon {

namespace {

constexpr int symbolSize = 16;
constexpr int gap = 8;
constexpr int padding = 5;

QHBoxLayout* makeLine(QWidget& row)
{
    auto* const line = new QHBoxLayout{&row};
    line->setContentsMargins(0, padding, 0, padding);
    line->setSpacing(gap);
    return line;
}

} // namespace

AppRow::AppRow(QWidget* parent)
    : ListRow(parent),
      details_(new IconButton{symbolSize, this}, Tint::blue),
      app_(new TextLabel{Fonts::body(), this}),
      policy_(new ChoiceBox{this}),
      remove_(new IconButton{symbolSize, this}, Tint::red)
{
    auto* const line = makeLine(*this);
    line->addWidget(details_.button);
    line->addWidget(app_, 1);
    line->addWidget(policy_);
    line->addWidget(remove_.button);
    app_->setSelectable();
    relay(details_.action);
    relay(policy_);
    relay(remove_.action);
}

void AppRow::setModel(const AppsTabModel::Row& model)
{
    model_ = model;
    details_.setModel(model_.details);
    app_->setText(toQString(model_.app));
    policy_->setModel(model_.policy);
    remove_.setModel(model_.remove);
}

void AppRow::takeFocus()
{
    remove_.button->setFocus();
}

CandidateRow::CandidateRow(QWidget* parent)
    : ListRow(parent),
      details_(new IconButton{symbolSize, this}, Tint::blue),
      app_(new TextLabel{Fonts::body(), this}),
      bytes_(new TextLabel{Fonts::caption(), this}),
      block_(new PushButton{Fonts::caption(), this}),
      never_(new PushButton{Fonts::caption(), this})
{
    auto* const line = makeLine(*this);
    line->addWidget(details_.button);
    line->addWidget(app_, 1);
    line->addWidget(bytes_);
    line->addWidget(block_.button);
    line->addWidget(never_.button);
    app_->setSelectable();
    bytes_->setTint(Tint::secondary);
    for (ButtonAction* const each : {details_.action, block_.action, never_.action}) relay(each);
}

void CandidateRow::setModel(const AppPickerModel::Row& model)
{
    model_ = model;
    details_.setModel(model_.details);
    app_->setText(toQString(model_.app));
    bytes_->setText(toQString(model_.bytes));
    block_.setModel(model_.block);
    never_.setModel(model_.never);
}

void CandidateRow::takeFocus()
{
    details_.button->setFocus();
}

} // namespace quellon
