#pragma once

#include <QScrollArea>

namespace quellon {

/// Lets what is higher than its place be scrolled, up and down only, without a frame. What Tab goes to comes into
/// sight. The bar stands in the margin on the right of what it scrolls, which keeps its width.
class PageScroll final : public QScrollArea {
    Q_OBJECT
public:
    /// `content` becomes a child.
    PageScroll(QWidget& content, QWidget* parent);

    /// Lets Tab go to the whole, for the keyboard to scroll it, while there is anything to scroll. For what may hold
    /// nothing that Tab goes to. `name` is what screen readers call it.
    void takeKeyboard(const QString& name);
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    class Ring;
    Ring* ring_ = nullptr; ///< Shows that the keyboard is here.
};

} // namespace quellon
