#pragma once

#include "QuellonCore/Presentation/Tint.h"
#include "QuellonUI/Kit/Pressable.h"

#include <string>
#include <string_view>

namespace quellon {

/// A symbol to press. What it does is in its accessible name and its tool tip.
class IconButton final : public Pressable {
    Q_OBJECT
public:
    explicit IconButton(int points, QWidget* parent = nullptr);

    void setSymbol(std::string_view name, Tint tint);
    [[nodiscard]] const std::string& symbol() const { return symbol_; }
    /// What screen readers say.
    void setLabel(const QString& label);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int points_;
    std::string symbol_;
    Tint tint_ = Tint::secondary;
};

} // namespace quellon
