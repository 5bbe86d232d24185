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

    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    bool viewportEvent(QEvent* event) override;
};

} // namespace quellon
