#pragma once

#include "QuellonCore/Presentation/FormControls.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Settings/Form/FieldEdit.h"
#include "QuellonUI/Settings/Form/FormView.h"

namespace quellon {

/// A field for a number with its unit behind it. Why a number is refused stands in a text of its own, for whoever lays
/// the field out.
class NumberEdit final : public FormView {
    Q_OBJECT
public:
    explicit NumberEdit(QWidget* parent = nullptr);

    void setModel(const FormNumber& model);
    [[nodiscard]] FieldEdit& edit() const { return *edit_; }
    [[nodiscard]] Paragraph& refusal() const { return *refusal_; }

private:
    FormNumber model_;
    FieldEdit* edit_;
    TextLabel* suffix_;
    Paragraph* refusal_;
};

} // namespace quellon
