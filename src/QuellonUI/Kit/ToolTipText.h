#pragma once

#include <QString>

namespace quellon {

/// `text` for a tool tip, which shows it as it is: the toolkit would take some texts for markup.
[[nodiscard]] QString toolTipOf(const QString& text);

} // namespace quellon
