#pragma once

#include "QuellonCore/Presentation/PlanTabModel.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/FormView.h"

namespace quellon {

class PageScroll;

/// The question before rules are lost.
class QuestionCard final : public FormView {
    Q_OBJECT
public:
    explicit QuestionCard(QWidget* parent = nullptr);

    void setModel(const PlanTabModel::Question& model);
    [[nodiscard]] QWidget& firstControl() const { return *keep_.button; }
    [[nodiscard]] QSize sizeHint() const override;

private:
    Paragraph* title_;
    Paragraph* changes_;
    PageScroll* scroll_;
    FormPress<PushButton> keep_;
    FormPress<PushButton> replace_;
};

} // namespace quellon
