#pragma once

#include "QuellonCore/Presentation/OnboardingModel.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/ChoiceBox.h"
#include "QuellonUI/Settings/Form/NumberEdit.h"

#include <QWidget>

#include <vector>

class QVBoxLayout;

namespace quellon {

class FormRow;
class LimitRow;
class PageScroll;

/// The first-run window: asks for the plan and shows the limits that follow from it. Draws its model and reports what
/// the user does; closing it is told, and means nothing else.
class OnboardingWindow final : public QWidget {
    Q_OBJECT
public:
    OnboardingWindow();
    ~OnboardingWindow() override;

    /// Shows this; returns at once when it is what is shown.
    void setModel(const OnboardingModel& model);

Q_SIGNALS:
    void acted(const SettingsAction& action);
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    OnboardingModel model_;
    bool ends_ = false;        ///< The window is being destroyed.
    bool expectsModel_ = true; ///< Something was done: what is drawn may differ from the model.

    QWidget* content_;
    PageScroll* scroll_;
    FormRow* sizeRow_;
    NumberEdit* size_;
    FormRow* dayRow_;
    NumberEdit* day_;
    FormRow* usageRow_;
    ChoiceBox* usage_;
    TextLabel* budget_;
    QVBoxLayout* limitColumn_;
    std::vector<LimitRow*> limits_;
    FormPress<PushButton> start_;

    void arrange();
    void arrangeHead(QVBoxLayout& column);
    void arrangePlan(QVBoxLayout& column);
    void arrangePreview(QVBoxLayout& column);
    void showLimits(const std::vector<OnboardingModel::Limit>& limits);
    void forward(const SettingsAction& action);
    void finishTyping();
    void fit();
};

} // namespace quellon
