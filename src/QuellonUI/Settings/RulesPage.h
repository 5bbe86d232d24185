#pragma once

#include "QuellonCore/Presentation/RulesTabModel.h"
#include "QuellonUI/Kit/MenuButton.h"
#include "QuellonUI/Settings/Form/FormRow.h"
#include "QuellonUI/Settings/Form/RemarkView.h"
#include "QuellonUI/Settings/Form/RowList.h"
#include "QuellonUI/Settings/RuleRow.h"

class QVBoxLayout;

namespace quellon {

class Headline;

/// The page about the rules of the active plan.
class RulesPage final : public FormView {
    Q_OBJECT
public:
    explicit RulesPage(QWidget* parent = nullptr);

    void setModel(const RulesTabModel& model);

private:
    RulesTabModel model_;
    Headline* headline_;
    RemarkView* blocked_;
    RemarkView* risk_;
    Card* card_;
    QVBoxLayout* rowColumn_;
    RowList<RuleRow, RulesTabModel::Row> rows_;
    MenuButton* add_;
    FormRow* steppingRow_;
    ChoiceBox* steppingIn_;

    RuleRow* makeRow();
    void fillMenu();
};

} // namespace quellon
