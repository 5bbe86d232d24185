#pragma once

#include "QuellonCore/Presentation/ToastPresenter.h"

#include <QWidget>

#include <cstddef>
#include <optional>
#include <vector>

class QGridLayout;

namespace quellon {

class ClampedText;
class IconButton;
class SymbolLabel;
class ToastButton;

/// Draws a toast on a rounded ground and reports what is pressed. As high as it needs to be.
class ToastView final : public QWidget {
    Q_OBJECT
public:
    static constexpr double radius = 12.0;

    explicit ToastView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const ToastModel& model);
    [[nodiscard]] const std::optional<ToastModel>& model() const { return model_; }
    /// The ground fills the corners too, for a window that is cut to its shape.
    void setFillsCorners(bool fills);

Q_SIGNALS:
    /// A button, 0 for the first.
    void pressed(std::size_t button);
    void closed();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<ToastModel> model_;
    SymbolLabel* symbol_;
    ClampedText* title_;
    ClampedText* text_;
    QGridLayout* buttonLayout_;
    IconButton* close_;
    std::vector<ToastButton*> buttons_;
    bool fillsCorners_ = false;

    void arrange();
    void showButtons();
    void arrangeButtons();
};

} // namespace quellon
