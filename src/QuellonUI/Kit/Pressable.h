#pragma once

#include <QAbstractButton>

class QPainter;

namespace quellon {

/// What all buttons of the kit share: Tab reaches them, Space and Enter press them, and what a button stands for may
/// change under the user's finger; `chosen` is a click that meant what the button stands for now. Of a double click the
/// second half counts only where the first one did, not on a button that has come under the pointer meanwhile.
class Pressable : public QAbstractButton {
    Q_OBJECT
public:
    explicit Pressable(QWidget* parent = nullptr);
    ~Pressable() override;

    /// Shows this text, and tells it to screen readers unless `accessibleName` says more. Returns at once when that is
    /// so already.
    void setTitle(const QString& title, const QString& accessibleName = {});
    /// A held button is drawn faint, and a press that begins on it never counts.
    void setHeld(bool held);
    /// The button stands for something else from now on: a press that is under way does not count.
    void lapse();
    /// Whether something is to be drawn that shows where the keyboard is.
    [[nodiscard]] bool showsFocus() const;

Q_SIGNALS:
    /// Clicked, by a press that counts.
    void chosen();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

    /// How opaque to draw: less when held or disabled.
    [[nodiscard]] double opacity() const;
    /// A ring in the accent colour, within `area`.
    void drawFocus(QPainter& painter, const QRectF& area, double radius) const;
    /// The faint ground below the pointer or the finger.
    void drawHover(QPainter& painter, const QRectF& area, double radius) const;

private:
    bool held_ = false;
    bool counts_ = false; ///< The latest press.
    bool fromKeyboard_ = false;
};

} // namespace quellon
