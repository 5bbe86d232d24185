#pragma once

#include <string_view>

namespace quellon {

/// True when `bytes` are well-formed UTF-8 from end to end: no overlong form, no surrogate, nothing above U+10FFFF, no
/// sequence cut short. The empty text is well-formed.
[[nodiscard]] bool isUtf8(std::string_view bytes);

} // namespace quellon
