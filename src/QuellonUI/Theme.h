#pragma once

#include "QuellonCore/Presentation/MenuPresentation.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

#include <string>

namespace quellon {

/// The colours of the program's windows, one set for light and one for dark surroundings.
struct Theme {
    QColor background;
    QColor card;
    QColor text;
    QColor secondaryText;
    QColor faintText;
    QColor separator;
    QColor track; ///< The part of a bar that is not filled.
    QColor hover;
    QColor accent;
    QColor good;
    QColor warning;
    QColor bad;

    /// The set that goes with a palette: dark when its windows are.
    [[nodiscard]] static const Theme& of(const QPalette& palette);
    /// The palette for widgets that draw themselves.
    [[nodiscard]] QPalette palette() const;
    [[nodiscard]] QColor tone(MenuPresentation::Tone tone) const;
};

/// The sizes of text, all from the user's own font.
namespace Fonts {

/// The user's font, with families behind it that have Chinese and emoji.
[[nodiscard]] QFont body();
[[nodiscard]] QFont title();
[[nodiscard]] QFont caption();
/// For the headings of sections, which are written in capitals.
[[nodiscard]] QFont section();

} // namespace Fonts

[[nodiscard]] inline QString toQString(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace quellon
