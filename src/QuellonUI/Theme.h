#pragma once

#include "QuellonCore/Presentation/MenuPresentation.h"
#include "QuellonCore/Presentation/Tint.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

#include <string>
#include <string_view>

namespace quellon {

/// The colours of the program's windows, one set for light and one for dark surroundings.
struct Theme {
    QColor background;
    QColor card;
    QColor text;
    QColor secondaryText;
    QColor faintText;
    QColor separator;
    QColor border;  ///< Around fields, buttons and whole windows.
    QColor control; ///< The ground of buttons.
    QColor track;   ///< The part of a bar that is not filled.
    QColor switchOff;
    QColor hover;
    QColor pressed;
    QColor accent;
    QColor accentFill; ///< A ground for white text.
    QColor good;
    QColor caution;
    QColor warning;
    QColor bad;
    /// The same, dark or bright enough to be read as small text.
    QColor accentText;
    QColor goodText;
    QColor cautionText;
    QColor warningText;
    QColor badText;

    /// The set that goes with a palette: dark when its windows are.
    [[nodiscard]] static const Theme& of(const QPalette& palette);
    [[nodiscard]] static const Theme& light();
    [[nodiscard]] static const Theme& dark();
    /// The palette for widgets that draw themselves.
    [[nodiscard]] QPalette palette() const;
    [[nodiscard]] QColor tone(MenuPresentation::Tone tone) const;
    /// The colour for symbols, dots and bars.
    [[nodiscard]] QColor tint(Tint tint) const;
    /// The colour for text.
    [[nodiscard]] QColor textTint(Tint tint) const;
};

/// The sizes of text, all from the user's own font.
namespace Fonts {

/// The user's font, with families behind it that have Chinese and emoji.
[[nodiscard]] QFont body();
/// The headline of a window.
[[nodiscard]] QFont title();
/// The name of what stands below: as large as the body, and heavier.
[[nodiscard]] QFont subheadline();
/// Names and links.
[[nodiscard]] QFont callout();
[[nodiscard]] QFont caption();
/// The smallest.
[[nodiscard]] QFont caption2();
/// For the headings of sections, which are written in capitals.
[[nodiscard]] QFont section();
/// The same font, in medium weight.
[[nodiscard]] QFont medium(QFont font);

} // namespace Fonts

[[nodiscard]] inline QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace quellon
