#pragma once

#include "QuellonCore/Measurement/LANClassifier.h"
#include "QuellonCore/Measurement/NettopParser.h"
#include "QuellonCore/Support/Numbers.h"

#include <string>
#include <string_view>
#include <vector>

/// The traffic sample read in the plainest way: every line and every field a string of its own. What the real parser is
/// compared with, in its results and in its speed.
namespace quellon::NaiveNettop {

inline std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (c == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

inline std::string trim(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

inline std::vector<ConnectionSample> parse(const std::string& csv, const std::string& interface)
{
    std::vector<ConnectionSample> samples;
    std::optional<std::int32_t> pid;
    bool hasTime = true;
    for (const auto& line : split(csv, '\n')) {
        std::vector<std::string> fields;
        for (const auto& field : split(line, ',')) fields.push_back(trim(field));
        if (fields.size() > 1) {
            const bool isUntimed = fields[0].empty() && fields[1] == "interface";
            const bool isOther =
                (fields[0].empty() && !fields[1].empty()) || (fields[0] == "time" && fields[1].empty());
            if (isUntimed) {
                hasTime = false;
            } else if (isOther) {
                hasTime = true;
            }
        }
        if (fields.size() < 5) continue;
        if (!hasTime) fields.insert(fields.begin(), "");
        if (fields[2].empty()) {
            pid = NettopParser::pid(fields[1]);
            continue;
        }
        if (!pid || (!interface.empty() && fields[2] != interface)) continue;
        if (LANClassifier::isLANConnection(fields[1])) continue;
        const auto bytesIn = parseWhole<std::uint64_t>(fields[3]);
        const auto bytesOut = parseWhole<std::uint64_t>(fields[4]);
        if (bytesIn && bytesOut) samples.push_back({*pid, fields[1], *bytesIn, *bytesOut});
    }
    return samples;
}

} // namespace quellon::NaiveNettop
