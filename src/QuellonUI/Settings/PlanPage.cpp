#include "QuellonUI/Settings/PlanPage.h"

#include "QuellonUI/Settings/SettingsMetrics.h"
#include "QuellonUI/Theme.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quellon {

namespace {

constexpr int widestName = 260;

/// A value in one line, to be selected and copied.
Paragraph* makeValue(QWidget* parent)
{
    auto* const value = new Paragraph{Fonts::body(), parent};
    value->setWordWrap(false);
    value->setTint(Tint::secondary);
    return value;
}

void showNumber(FormRow& row, NumberEdit& edit, const FormNumber& model)
{
    row.setLabel(toQString(model.label));
    edit.setModel(model);
}

void showChoice(FormRow& row, ChoiceBox& box, const FormChoice& model)
{
    row.setLabel(toQString(model.label));
    box.setModel(model);
}

void showStat(FormRow& row, Paragraph& value, const FormStat& model)
{
    row.setLabel(toQString(model.label));
    value.setText(toQString(model.value));
}

} // namespace

PlanPage::PlanPage(QWidget* parent)
    : FormView(parent),
      profiles_(new FormCard{this}),
      profileRow_(new FormRow),
      profile_(new ChoiceBox),
      nameRow_(new FormRow),
      name_(new FieldEdit),
      add_(new PushButton{Fonts::body()}),
      remove_(new PushButton{Fonts::body()}),
      footer_(new Paragraph{Fonts::caption(), this}),
      plan_(new FormCard{this}),
      sizeRow_(new FormRow),
      size_(new NumberEdit),
      dayRow_(new FormRow),
      day_(new NumberEdit),
      usageRow_(new FormRow),
      usage_(new ChoiceBox),
      rederive_(new PushButton{Fonts::body()}),
      budget_(new TextLabel{Fonts::caption()}),
      cycle_(new FormCard{this}),
      usedRow_(new FormRow),
      used_(makeValue(usedRow_)),
      leftRow_(new FormRow),
      left_(makeValue(leftRow_)),
      carrierRow_(new FormRow),
      carrier_(new NumberEdit),
      match_(new PushButton{Fonts::body()}),
      clear_(new PushButton{Fonts::body()}),
      adjusted_(new Paragraph{Fonts::caption()}),
      note_(new Paragraph{Fonts::caption()}),
      gaps_(new Paragraph{Fonts::caption()})
{
    auto* const column = new QVBoxLayout{this};
    SettingsMetrics::setPage(*column);
    arrangeProfiles();
    arrangePlan();
    arrangeCycle();
    column->addWidget(profiles_);
    column->addWidget(footer_);
    column->addWidget(plan_);
    column->addWidget(cycle_);
    column->addStretch(1);
    connectControls();
}

void PlanPage::arrangeProfiles()
{
    profile_->setMaximumWidth(widestName);
    name_->setFixedWidth(widestName);
    footer_->setTint(Tint::secondary);
    footer_->setContentsMargins(SettingsMetrics::footerInset, 0, SettingsMetrics::footerInset, 0);
    profileRow_->addControl(*profile_);
    nameRow_->addControl(*name_);
    profiles_->addRow(*profileRow_);
    profiles_->addRow(*nameRow_);
    auto* const buttons = new FormRow;
    buttons->addControl(*add_.button);
    buttons->addControl(*remove_.button);
    profiles_->addRow(*buttons);
}

void PlanPage::arrangePlan()
{
    sizeRow_->addControl(*size_);
    sizeRow_->addBelow(size_->refusal());
    dayRow_->addControl(*day_);
    dayRow_->addBelow(day_->refusal());
    usageRow_->addControl(*usage_);
    auto* const last = new QWidget;
    auto* const line = new QHBoxLayout{last};
    line->setContentsMargins(0, SettingsMetrics::rowPadding, 0, SettingsMetrics::rowPadding);
    line->addWidget(rederive_.button);
    budget_->setTint(Tint::secondary);
    budget_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    line->addWidget(budget_, 1);
    for (FormRow* const row : {sizeRow_, dayRow_, usageRow_}) plan_->addRow(*row);
    plan_->addRow(*last);
}

void PlanPage::arrangeCycle()
{
    cycle_->setHeading(toQString(PlanTabModel::cycleHeading));
    usedRow_->addControl(*used_);
    leftRow_->addControl(*left_);
    carrierRow_->addControl(*carrier_);
    carrierRow_->addControl(*match_.button);
    carrierRow_->addControl(*clear_.button);
    carrierRow_->addBelow(carrier_->refusal());
    carrierRow_->addBelow(*adjusted_);
    auto* const notes = new QWidget;
    auto* const column = new QVBoxLayout{notes};
    column->setContentsMargins(0, SettingsMetrics::rowPadding, 0, SettingsMetrics::rowPadding);
    column->addWidget(note_);
    column->addWidget(gaps_);
    note_->setTint(Tint::secondary);
    adjusted_->setTint(Tint::secondary);
    gaps_->setTint(Tint::orange);
    cycle_->addRow(*usedRow_);
    cycle_->addRow(*leftRow_);
    cycle_->addRow(*notes);
    cycle_->addRow(*carrierRow_);
}

void PlanPage::connectControls()
{
    for (ChoiceBox* const box : {profile_, usage_}) relay(box);
    for (NumberEdit* const edit : {size_, day_, carrier_}) relay(edit);
    for (const auto& press : {add_, remove_, rederive_, match_, clear_}) relay(press.action);
    connect(name_, &FieldEdit::typed, this, [this](const QString& text) {
        Q_EMIT acted(SettingsActions::RenameProfile{text.toStdString(), planID_});
    });
}

void PlanPage::setModel(const PlanTabModel& model)
{
    planID_ = model.plan;
    showChoice(*profileRow_, *profile_, model.profile);
    nameRow_->setLabel(toQString(model.name.label));
    const QString name = toQString(model.name.accessibilityLabel);
    if (name_->accessibleName() != name) name_->setAccessibleName(name);
    name_->setModelText(toQString(model.name.text));
    add_.setModel(model.add);
    remove_.setModel(model.remove);
    setOptional(*footer_, model.profilesFooter);
    showNumber(*sizeRow_, *size_, model.planSize);
    showNumber(*dayRow_, *day_, model.startDay);
    showChoice(*usageRow_, *usage_, model.usageProfile);
    rederive_.setModel(model.rederive);
    budget_->setText(toQString(model.dailyBudget));
    if (model.cycle) showCycle(*model.cycle);
    cycle_->setVisible(model.cycle.has_value());
}

void PlanPage::showCycle(const PlanTabModel::Cycle& cycle)
{
    showStat(*usedRow_, *used_, cycle.used);
    showStat(*leftRow_, *left_, cycle.left);
    note_->setText(toQString(cycle.note));
    setOptional(*gaps_, cycle.gaps);
    showNumber(*carrierRow_, *carrier_, cycle.carrier);
    match_.setModel(cycle.match);
    clear_.setModel(cycle.clear);
    setOptional(*adjusted_, cycle.adjusted);
}

} // namespace quellon
