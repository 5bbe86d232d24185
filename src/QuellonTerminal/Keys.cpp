#include "QuellonTerminal/Keys.h"

namespace quellon {

namespace {

constexpr char escape = '\x1B';
constexpr char redraw = '\f'; // Ctrl-L

Key command(ControlCommand command)
{
    return {.kind = Key::Kind::command, .command = command};
}

std::optional<Key> letter(char byte)
{
    switch (byte) {
    case 'q':
    case 'Q':
        return Key{.kind = Key::Kind::quit};
    case redraw:
        return Key{.kind = Key::Kind::redraw};
    case 's':
        return command(ControlCommand::startOrStop);
    case 'k':
        return command(ControlCommand::selectPrevious);
    case 'j':
        return command(ControlCommand::selectNext);
    case 'r':
        return command(ControlCommand::resume);
    case 'z':
        return command(ControlCommand::snooze);
    case 'a':
        return command(ControlCommand::resumeAll);
    case 'd':
        return command(ControlCommand::dismiss);
    default:
        break;
    }
    if (byte < '1' || byte > '9') return std::nullopt;
    return Key{.kind = Key::Kind::answer, .button = static_cast<std::size_t>(byte - '1')};
}

/// The key whose sequence ends with this byte.
std::optional<Key> arrow(char last)
{
    if (last == 'A') return command(ControlCommand::selectPrevious);
    if (last == 'B') return command(ControlCommand::selectNext);
    return std::nullopt;
}

} // namespace

std::vector<Key> KeyDecoder::take(std::string_view bytes)
{
    std::vector<Key> result;
    for (const char byte : bytes) {
        if (const auto key = take(byte)) result.push_back(*key);
    }
    return result;
}

std::optional<Key> KeyDecoder::take(char byte)
{
    const State state = state_;
    state_ = State::plain;
    if (byte == escape) {
        state_ = State::escape;
        return std::nullopt;
    }
    switch (state) {
    case State::escape:
        if (byte == '[') state_ = State::sequence;
        if (byte == 'O') state_ = State::shortSequence;
        if (state_ != State::plain) return std::nullopt;
        break;
    case State::sequence:
        if (byte >= 0x40 && byte < 0x7F) return arrow(byte);
        // Parameters; a control character ends what was no sequence.
        if (byte >= 0x20 && byte < 0x40) state_ = State::sequence;
        if (state_ != State::plain) return std::nullopt;
        break;
    case State::shortSequence:
        return arrow(byte);
    case State::plain:
        break;
    }
    return letter(byte);
}

namespace KeyNames {

std::string_view of(ControlCommand command)
{
    switch (command) {
    case ControlCommand::startOrStop:
        return "s";
    case ControlCommand::selectPrevious:
        return "↑";
    case ControlCommand::selectNext:
        return "↑↓";
    case ControlCommand::resume:
        return "r";
    case ControlCommand::snooze:
        return "z";
    case ControlCommand::resumeAll:
        return "a";
    case ControlCommand::dismiss:
        break;
    }
    return "d";
}

} // namespace KeyNames

} // namespace quellon
