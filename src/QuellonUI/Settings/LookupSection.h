#pragma once

#include "QuellonCore/Presentation/AppDetailModel.h"
#include "QuellonUI/Kit/LinkButton.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/FormView.h"

namespace quellon {

class Spinner;

/// What stands in the details of an application of which nothing is known: the way to look it up. Its texts stand
/// `inset` points from its left edge.
class LookupSection final : public FormView {
    Q_OBJECT
public:
    static constexpr int inset = LinkButton::sidePadding;

    explicit LookupSection(QWidget* parent = nullptr);

    void setModel(const AppDetailModel::Unknown& model);

private:
    Paragraph* text_;
    QWidget* progress_;
    Spinner* spinner_;
    Paragraph* lookingUp_;
    QWidget* consent_;
    Paragraph* consentTitle_;
    Paragraph* consentText_;
    FormPress<LinkButton> allow_;
    FormPress<LinkButton> decline_;
    FormPress<LinkButton> explain_;
    Paragraph* failure_;

    void arrangeProgress();
    void arrangeConsent();
    void showConsent(const ExplainConsentRow& consent);
    void takeFocus();
};

} // namespace quellon
