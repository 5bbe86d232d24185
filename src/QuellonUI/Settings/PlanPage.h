#pragma once

#include "QuellonCore/Presentation/PlanTabModel.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Settings/Form/FormView.h"
#include "QuellonUI/Settings/Form/NumberEdit.h"

namespace quellon {

/// The page about the data plans. The question that its model may hold is the window's to show.
class PlanPage final : public FormView {
    Q_OBJECT
public:
    explicit PlanPage(QWidget* parent = nullptr);

    void setModel(const PlanTabModel& model);

private:
    UUID planID_;

    FormCard* profiles_;
    FormRow* profileRow_;
    ChoiceBox* profile_;
    FormRow* nameRow_;
    FieldEdit* name_;
    FormPress<PushButton> add_;
    FormPress<PushButton> remove_;
    Paragraph* footer_;

    FormCard* plan_;
    FormRow* sizeRow_;
    NumberEdit* size_;
    FormRow* dayRow_;
    NumberEdit* day_;
    FormRow* usageRow_;
    ChoiceBox* usage_;
    FormPress<PushButton> rederive_;
    TextLabel* budget_;

    FormCard* cycle_;
    FormRow* usedRow_;
    Paragraph* used_;
    FormRow* leftRow_;
    Paragraph* left_;
    FormRow* carrierRow_;
    NumberEdit* carrier_;
    FormPress<PushButton> match_;
    FormPress<PushButton> clear_;
    Paragraph* adjusted_;
    Paragraph* note_;
    Paragraph* gaps_;

    void arrangeProfiles();
    void arrangePlan();
    void arrangeCycle();
    void connectControls();
    void showCycle(const PlanTabModel::Cycle& cycle);
};

} // namespace quellon
