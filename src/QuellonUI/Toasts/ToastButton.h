#pragma once

#include "QuellonCore/Presentation/ToastPresenter.h"
#include "QuellonUI/Kit/Pressable.h"

namespace quellon {

/// A small button of a toast.
class ToastButton final : public Pressable {
    Q_OBJECT
public:
    explicit ToastButton(QWidget* parent = nullptr);

    void setStyleOf(const ToastButtonStyle& style);
    [[nodiscard]] const ToastButtonStyle& styleOf() const { return style_; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ToastButtonStyle style_;
};

} // namespace quellon
