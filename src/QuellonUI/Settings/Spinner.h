#pragma once

#include <QBasicTimer>
#include <QProgressBar>

namespace quellon {

/// A small ring that turns while something is under way. It stands still, and costs nothing, while it cannot be seen.
class Spinner final : public QProgressBar {
    Q_OBJECT
public:
    explicit Spinner(QWidget* parent = nullptr);

    [[nodiscard]] bool isTurning() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer timer_;
    int turn_ = 0; ///< In steps.
};

} // namespace quellon
