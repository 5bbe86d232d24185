#pragma once

#include "QuellonCore/Presentation/Tint.h"
#include "QuellonUI/Kit/Pressable.h"

#include <QFont>

#include <string>
#include <string_view>

namespace quellon {

/// Text to press, without a frame, in the accent colour unless told otherwise; a symbol may stand before it.
class LinkButton : public Pressable {
    Q_OBJECT
public:
    /// From the left and right edge to the text.
    static constexpr int sidePadding = 5;

    explicit LinkButton(const QFont& font, QWidget* parent = nullptr);

    void setTint(Tint tint);
    void setSymbol(std::string_view name);
    [[nodiscard]] Tint tint() const { return tint_; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tint tint_ = Tint::blue;
    std::string symbol_;

    [[nodiscard]] int symbolSide() const;
    [[nodiscard]] int symbolRoom() const;
};

} // namespace quellon
