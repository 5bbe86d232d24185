#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QProgressBar>

namespace quellon {

/// A thin rounded bar that shows a fraction.
class Bar final : public QProgressBar {
    Q_OBJECT
public:
    explicit Bar(QWidget* parent = nullptr);

    /// Shows a fraction, 0 to 1. Returns at once when this is what is shown.
    void setValue(double fraction, Tint tint);
    [[nodiscard]] double fraction() const { return fraction_; }
    [[nodiscard]] Tint tint() const { return tint_; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double fraction_ = 0.0;
    Tint tint_ = Tint::green;
};

} // namespace quellon
