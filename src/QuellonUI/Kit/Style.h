#pragma once

#include <QProxyStyle>

namespace quellon {

/// Draws the toolkit's own controls like those of the kit: round corners, fine lines, a ring in the accent colour
/// around what has the keyboard.
class Style final : public QProxyStyle {
    Q_OBJECT
public:
    Style();

    void polish(QWidget* widget) override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                                  const QWidget* widget = nullptr) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
                                QStyleHintReturn* returned = nullptr) const override;

    using QProxyStyle::polish;
};

} // namespace quellon
