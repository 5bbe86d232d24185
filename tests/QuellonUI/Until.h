#pragma once

#include <functional>

namespace quellon::testing {

/// Lets events happen until the condition holds. False when it still doesn't after a time that is far too long.
bool until(const std::function<bool()>& condition);

} // namespace quellon::testing
