#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QFont>
#include <QLabel>

namespace quellon {

/// Plain text in one line that is elided in the middle where there is no room; the whole of it is its accessible name,
/// and its tool tip when it is cut. It may be selected and copied; where it is cut, only the whole of it.
class TextLabel final : public QLabel {
    Q_OBJECT
public:
    explicit TextLabel(const QFont& font, QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setText(const QString& text);
    void setTint(Tint tint);
    /// Whether it may be cut for want of room, which it may unless told otherwise.
    void setElastic(bool elastic);
    /// Lets the user select it, by the mouse, and by the keyboard once it was clicked.
    void setSelectable();
    [[nodiscard]] Tint tint() const { return tint_; }
    /// What is drawn: the text, or what of it fits.
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    Tint tint_ = Tint::primary;
    bool elastic_ = true;

    [[nodiscard]] bool isSelectable() const { return textInteractionFlags().testFlag(Qt::TextSelectableByMouse); }
    void colour();
    void selectWhole();
};

} // namespace quellon
