#pragma once

#include "QuellonUI/Theme.h"

#include <QPushButton>

namespace quellon {

/// A small button without a frame, coloured by what it stands for.
class FlatButton final : public QPushButton {
    Q_OBJECT
public:
    enum class Kind { plain, primary, destructive };

    explicit FlatButton(QWidget* parent = nullptr);

    void setKind(Kind kind);
    void setTheme(const Theme& theme);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind kind_ = Kind::plain;
    Theme theme_;

    [[nodiscard]] QColor fill() const;
    [[nodiscard]] QColor textColour() const;
};

} // namespace quellon
