#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QColor>
#include <QWidget>

namespace quellon {

/// A coloured dot, 8 points wide, with a halo. Says nothing by itself: the text beside it does.
class StatusDot final : public QWidget {
    Q_OBJECT
public:
    explicit StatusDot(QWidget* parent = nullptr);

    void setTint(Tint tint);
    /// What the dot is drawn in now.
    [[nodiscard]] QColor colour() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tint tint_ = Tint::secondary;
};

} // namespace quellon
