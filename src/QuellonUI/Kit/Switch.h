#pragma once

#include "QuellonUI/Kit/Pressable.h"

namespace quellon {

/// A switch. It shows what it was told last: a click does not move it, but is `chosen`, and whoever hears of that tells
/// it the new state.
class Switch final : public Pressable {
    Q_OBJECT
public:
    explicit Switch(QWidget* parent = nullptr);

    /// Shows this state.
    void setOn(bool on);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}

private:
    bool on_ = false;

    void keepState(bool checked);
};

} // namespace quellon
