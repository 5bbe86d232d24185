#pragma once

#include "QuellonCore/Presentation/ControlsModel.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace quellon {

/// What a key of the terminal view asks for.
struct Key {
    enum class Kind { quit, redraw, command, answer };

    Kind kind = Kind::quit;
    ControlCommand command = ControlCommand::startOrStop; ///< Of `command`.
    std::size_t button = 0;                               ///< Of `answer`, 0 for the first.
    bool operator==(const Key&) const = default;
};

/// The keys in the bytes that a terminal sends. The sequences of the function keys, which begin with an escape, are
/// told apart from the letters and digits in them, also when they come in pieces.
class KeyDecoder {
public:
    /// The keys that these bytes complete, in their order; bytes that mean nothing here are passed over.
    [[nodiscard]] std::vector<Key> take(std::string_view bytes);

private:
    enum class State { plain, escape, sequence, shortSequence };
    State state_ = State::plain;

    [[nodiscard]] std::optional<Key> take(char byte);
};

/// The keys as they are shown to the user.
namespace KeyNames {

inline constexpr std::string_view quit = "q";
[[nodiscard]] std::string_view of(ControlCommand command);

} // namespace KeyNames

} // namespace quellon
