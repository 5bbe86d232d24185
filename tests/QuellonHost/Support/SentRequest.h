#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace quellon::testing {

/// A request as it stood on the wire, its headers in ascending order: which comes first is up to the library.
struct SentRequest {
    std::string firstLine;
    std::vector<std::string> headers;
    std::string body;

    /// Splits all that was sent on one connection. What is no request has an empty `headers` and tells so.
    [[nodiscard]] static SentRequest parse(const std::string& bytes)
    {
        const auto headEnd = bytes.find("\r\n\r\n");
        if (headEnd == std::string::npos) return {"no end of the headers: " + bytes, {}, ""};
        SentRequest result{"", {}, bytes.substr(headEnd + 4)};
        const auto head = bytes.substr(0, headEnd + 2);
        for (std::size_t at = 0; at < head.size();) {
            const auto end = head.find("\r\n", at);
            result.headers.push_back(head.substr(at, end - at));
            at = end + 2;
        }
        result.firstLine = result.headers.front();
        result.headers.erase(result.headers.begin());
        std::sort(result.headers.begin(), result.headers.end());
        return result;
    }

    bool operator==(const SentRequest&) const = default;
};

inline void PrintTo(const SentRequest& sent, std::ostream* out)
{
    *out << sent.firstLine << '\n';
    for (const auto& header : sent.headers) *out << header << '\n';
    *out << '\n' << sent.body;
}

} // namespace quellon::testing
