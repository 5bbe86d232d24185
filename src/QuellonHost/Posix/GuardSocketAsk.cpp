#include "QuellonHost/Posix/GuardSocket.h"
#include "QuellonHost/Posix/GuardSocketPlaces.h"
#include "QuellonHost/Posix/Waiting.h"

#include <array>
#include <optional>

namespace quellon::GuardSocket {

namespace {

/// The whole text; absent when its end has not come by the deadline, or never comes.
std::optional<std::string> readText(const Descriptor& connection, Deadline deadline)
{
    const Interruption never;
    std::array<char, 16'384> buffer{};
    std::string text;
    while (text.size() <= largestText) {
        const ReadStep step = readStep(connection.get(), buffer, deadline, never);
        if (step.wait != WaitEnd::ready || step.count == 0) return std::nullopt;
        text.append(buffer.data(), step.count);
        if (!text.ends_with(endMark)) continue;
        text.pop_back();
        return text;
    }
    return std::nullopt;
}

/// Absent where nobody is.
std::optional<Reply> askAt(const std::filesystem::path& path, Deadline deadline)
{
    const auto place = address(path);
    if (!place || !isPrivateFolder(path.parent_path())) return std::nullopt;
    const Descriptor connection = makeSocket();
    const Connection made = connection ? connect(connection, *place) : Connection::refused;
    if (made == Connection::refused) return std::nullopt;
    const Reply silent{Reply::Outcome::silent, {}};
    if (made == Connection::busy || !isSameUser(connection)) return silent;
    auto text = readText(connection, deadline);
    return !text ? silent : Reply{Reply::Outcome::answered, *std::move(text)};
}

} // namespace

Reply ask(const std::vector<std::filesystem::path>& places, Seconds limit)
{
    const Deadline deadline = deadlineAfter(limit);
    for (const auto& path : places) {
        if (auto reply = askAt(path, deadline)) return *std::move(reply);
    }
    return {};
}

} // namespace quellon::GuardSocket
