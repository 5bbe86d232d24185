#pragma once

#include "QuellonCore/Presentation/AppsTabModel.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Settings/AppRow.h"
#include "QuellonUI/Settings/Form/FieldEdit.h"
#include "QuellonUI/Settings/Form/RowList.h"

class QVBoxLayout;

namespace quellon {

class PageScroll;

/// The list from which an application is picked for a policy.
class AppPicker final : public FormView {
    Q_OBJECT
public:
    explicit AppPicker(QWidget* parent = nullptr);

    void setModel(const AppPickerModel& model);
    [[nodiscard]] QWidget& firstControl() const { return *filter_; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    TextLabel* title_;
    Paragraph* text_;
    FieldEdit* filter_;
    QWidget* list_;
    PageScroll* scroll_;
    QVBoxLayout* rowColumn_;
    RowList<CandidateRow, AppPickerModel::Row> rows_;
    FormPress<PushButton> cancel_;

    CandidateRow* makeRow();
    void arrange();
};

} // namespace quellon
