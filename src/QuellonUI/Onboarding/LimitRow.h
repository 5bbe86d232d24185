#pragma once

#include "QuellonCore/Presentation/OnboardingModel.h"
#include "QuellonUI/Kit/TextLabel.h"

#include <QWidget>

namespace quellon {

/// One of the limits that the plan leads to.
class LimitRow final : public QWidget {
    Q_OBJECT
public:
    explicit LimitRow(QWidget* parent = nullptr);

    void setModel(const OnboardingModel::Limit& model);

private:
    TextLabel* over_;
    TextLabel* window_;
    TextLabel* level_;
};

} // namespace quellon
