#pragma once

#include "QuellonCore/Presentation/Tint.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QWidget>

#include <string>
#include <string_view>

class QPainter;

namespace quellon {

/// The symbol of this name in one colour, `points` wide and high, at so many device pixels a point. Empty pixels when
/// there is no such symbol. What was drawn lately is kept. Main thread only.
[[nodiscard]] QPixmap symbolPixmap(std::string_view name, int points, const QColor& colour, double devicePixelRatio);

/// Draws the symbol with its upper left corner at `at`, as sharp as the device is.
void drawSymbol(QPainter& painter, const QPoint& at, std::string_view name, int points, const QColor& colour);

/// The symbol as an icon for buttons and menus, sharp at every size and scale, in the colour that the tint has in the
/// application's palette when it is drawn; fainter when disabled, white when selected.
[[nodiscard]] QIcon symbolIcon(std::string_view name, Tint tint = Tint::primary);

/// A symbol beside a text. Says nothing by itself.
class SymbolLabel final : public QWidget {
    Q_OBJECT
public:
    explicit SymbolLabel(int points, QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setSymbol(std::string_view name, Tint tint);
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] Tint tint() const { return tint_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int points_;
    std::string name_;
    Tint tint_ = Tint::primary;
};

} // namespace quellon
