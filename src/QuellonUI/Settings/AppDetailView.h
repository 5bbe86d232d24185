#pragma once

#include "QuellonCore/Presentation/AppDetailModel.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Kit/StatusDot.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/PageScroll.h"
#include "QuellonUI/Settings/LookupSection.h"

#include <vector>

class QHBoxLayout;
class QVBoxLayout;

namespace quellon {

/// The details of one application: what it is, and what the guard has done to it.
class AppDetailView final : public FormView {
    Q_OBJECT
public:
    explicit AppDetailView(QWidget* parent = nullptr);

    void setModel(const AppDetailModel& model);
    [[nodiscard]] QWidget& firstControl() const { return *close_.button; }
    [[nodiscard]] QSize sizeHint() const override;

private:
    AppDetailModel model_;
    TextLabel* app_;
    TextLabel* subtitle_;
    ChoiceBox* policy_;
    QWidget* column_;
    PageScroll* scroll_;
    Card* identity_;
    Paragraph* whatItIs_;
    Paragraph* whyTraffic_;
    StatusDot* dot_;
    Paragraph* advice_;
    Paragraph* limitNote_;
    Paragraph* provenance_;
    Card* unknownCard_;
    LookupSection* unknown_;
    Card* usage_;
    TextLabel* lastHour_;
    TextLabel* lastHourBytes_;
    Paragraph* chronic_;
    Card* actions_;
    std::vector<Paragraph*> lines_;
    QHBoxLayout* bottom_;
    std::vector<FormPress<PushButton>> pauseControls_;
    FormPress<PushButton> close_;

    void arrange();
    void arrangeHeader(QVBoxLayout& column);
    void arrangeSections();
    void arrangeIdentity();
    void showIdentity(const AppDetailModel::Identity& identity);
    void showLines(const std::vector<std::string>& lines);
    void showPauseControls(const std::vector<FormButton>& controls);
};

} // namespace quellon
