#pragma once

#include "QuellonCore/Presentation/RulesTabModel.h"
#include "QuellonUI/Kit/Switch.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/ListRow.h"
#include "QuellonUI/Settings/Form/NumberEdit.h"

namespace quellon {

/// One rule.
class RuleRow final : public ListRow {
    Q_OBJECT
public:
    explicit RuleRow(QWidget* parent = nullptr);

    void setModel(const RulesTabModel::Row& model);
    [[nodiscard]] const RulesTabModel::Row& model() const { return model_; }
    void takeFocus();

private:
    RulesTabModel::Row model_;
    FormPress<Switch> enabled_;
    TextLabel* window_;
    NumberEdit* limit_;
    TextLabel* share_;
    ChoiceBox* action_;
};

} // namespace quellon
