#pragma once

#include <QString>

#include <string>

namespace quellon {

/// A tool tip's text without the characters that are markup. Some hosts read a tool tip as markup, and show nothing
/// when it is none; others show it as it is, so that it can't be escaped either.
[[nodiscard]] QString toolTipText(const std::string& text);

} // namespace quellon
