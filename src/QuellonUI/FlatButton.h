#pragma once

#include "QuellonUI/Theme.h"

#include <QPushButton>

namespace quellon {

/// A small button without a frame, coloured by what it stands for. What that is may change under the user's finger;
/// `chosen` is a click that meant what the button stands for now.
class FlatButton final : public QPushButton {
    Q_OBJECT
public:
    enum class Kind { plain, primary, destructive };

    explicit FlatButton(QWidget* parent = nullptr);

    void setKind(Kind kind);
    void setTheme(const Theme& theme);
    /// A held button is drawn faint, and a press that begins on it never counts.
    void setHeld(bool held);
    /// The button stands for something else from now on: a press that is under way does not count.
    void lapse();

Q_SIGNALS:
    /// Clicked, by a press that counts.
    void chosen();

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Kind kind_ = Kind::plain;
    Theme theme_;
    bool held_ = false;
    bool counts_ = false; ///< The latest press.

    [[nodiscard]] QColor fill() const;
    [[nodiscard]] QColor textColour() const;
};

} // namespace quellon
