#pragma once

#include <string>

namespace quellon {

/// Something to press. What it does is a value, which the view hands back.
template <typename Action>
struct ActionButton {
    std::string title;
    std::string accessibilityLabel; ///< What a screen reader says; the title where that says enough.
    Action action;
    std::string symbol{};     ///< The name of the symbol that it shows; empty for none.
    bool destructive = false; ///< It takes something away.
    bool enabled = true;      ///< Whether it can be pressed.
    bool operator==(const ActionButton&) const = default;
};

} // namespace quellon
