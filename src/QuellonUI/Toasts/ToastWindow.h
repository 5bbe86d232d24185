#pragma once

#include "QuellonCore/Presentation/ToastPresenter.h"

#include <QWidget>

namespace quellon {

class ToastView;

/// The window of one toast: above all others, without a frame, and never with the focus. To screen readers it is an
/// alert of its own, named by its title.
class ToastWindow final : public QWidget {
    Q_OBJECT
public:
    explicit ToastWindow(const ToastModel& model);

    void setModel(const ToastModel& model);
    [[nodiscard]] ToastView& view() const { return *view_; }
    /// Shows it there without activating the program.
    void showAt(QPoint corner);

Q_SIGNALS:
    /// Another height is needed.
    void resized();

protected:
    bool event(QEvent* event) override;

private:
    ToastView* view_;

    void fit();
    void shape();
};

} // namespace quellon
