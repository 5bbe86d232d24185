#pragma once

#include "QuellonCore/Presentation/Tint.h"
#include "QuellonUI/Kit/Pressable.h"

#include <QFont>

#include <string>
#include <string_view>

class QMenu;

namespace quellon {

/// Text that opens a menu, with a symbol before it and one behind; without a ground unless told otherwise. Long text is
/// elided in the middle.
class MenuButton : public Pressable {
    Q_OBJECT
public:
    /// From the left and right edge to what is drawn.
    static constexpr int sidePadding = 5;

    explicit MenuButton(const QFont& font, QWidget* parent = nullptr);

    /// The names of the symbols; empty for none.
    void setSymbols(std::string_view before, std::string_view behind);
    void setTint(Tint tint);
    /// Gives it the ground of a push button, and its size.
    void setGround();
    [[nodiscard]] QMenu& menu() const { return *menu_; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QMenu* menu_;
    std::string before_;
    std::string behind_;
    Tint tint_ = Tint::primary;
    bool hasGround_ = false;

    [[nodiscard]] int side() const;
    [[nodiscard]] int top() const;
    [[nodiscard]] int symbolRoom(const std::string& symbol) const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString shownTitle() const;
    void drawGround(QPainter& painter) const;
};

} // namespace quellon
