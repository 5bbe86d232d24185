#pragma once

#include "QuellonCore/Presentation/RulesTabModel.h"

#include <QLabel>

namespace quellon {

/// A sentence with one part in bold.
class Headline final : public QLabel {
    Q_OBJECT
public:
    explicit Headline(QWidget* parent = nullptr);

    void setModel(const RulesTabModel::Headline& model);
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int boldFrom_ = 0;
    int boldLength_ = 0;
};

} // namespace quellon
