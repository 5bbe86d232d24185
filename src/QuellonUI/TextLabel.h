#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>

namespace quellon {

/// Plain text in one line that is elided where there is no room; the whole of it is its accessible name, and its tool
/// tip when it is cut.
class TextLabel final : public QLabel {
    Q_OBJECT
public:
    explicit TextLabel(const QFont& font, QWidget* parent = nullptr);

    void setColour(const QColor& colour);
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
};

} // namespace quellon
