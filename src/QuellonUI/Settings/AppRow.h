#pragma once

#include "QuellonCore/Presentation/AppsTabModel.h"
#include "QuellonUI/Kit/IconButton.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/ListRow.h"

namespace quellon {

/// An application with a policy.
class AppRow final : public ListRow {
    Q_OBJECT
public:
    explicit AppRow(QWidget* parent = nullptr);

    void setModel(const AppsTabModel::Row& model);
    [[nodiscard]] const AppsTabModel::Row& model() const { return model_; }
    void takeFocus();

private:
    AppsTabModel::Row model_;
    FormPress<IconButton> details_;
    TextLabel* app_;
    ChoiceBox* policy_;
    FormPress<IconButton> remove_;
};

/// An application that a policy can be picked for.
class CandidateRow final : public ListRow {
    Q_OBJECT
public:
    explicit CandidateRow(QWidget* parent = nullptr);

    void setModel(const AppPickerModel::Row& model);
    [[nodiscard]] const AppPickerModel::Row& model() const { return model_; }
    void takeFocus();

private:
    AppPickerModel::Row model_;
    FormPress<IconButton> details_;
    TextLabel* app_;
    TextLabel* bytes_;
    FormPress<PushButton> block_;
    FormPress<PushButton> never_;
};

} // namespace quellon
