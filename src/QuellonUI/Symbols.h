#pragma once

#include <QFont>
#include <QString>

namespace quellon {

/// `text` without the symbols (such as emoji) that none of the system's fonts can draw, each with the blank behind it;
/// an empty box in their place would tell nothing. Letters stay in any case.
[[nodiscard]] QString withDrawableSymbols(const QString& text, const QFont& font);

} // namespace quellon
