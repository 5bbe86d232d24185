#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"
#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Support/Json.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What the tests of both knowledge packs ask of their texts.
namespace quellon {

inline constexpr std::size_t longestText = 160; ///< In characters.

/// The characters of a text in UTF-8.
inline std::size_t characters(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// What is wrong with one text: it must not be empty or over-long, and no control character or blank may stand where
/// one does not belong. A sentence ends in a point.
inline std::string problemOf(std::string_view text, bool isSentence)
{
    if (text.empty()) return "empty";
    if (characters(text) > longestText) return "longer than 160 characters";
    if (text.front() == ' ' || text.back() == ' ' || text.find("  ") != std::string_view::npos) return "stray blank";
    if (std::any_of(text.begin(), text.end(),
                    [](char c) { return static_cast<unsigned char>(c) < 0x20U || c == 0x7F; }))
        return "control character";
    if (isSentence && text.back() != '.') return "no point at the end";
    return "";
}

/// What is wrong with the rows, one line each: "{key} {field}: {problem}". No two fields of theirs may have the same
/// text, but for vendors.
inline std::vector<std::string> problemsOf(const ExplanationMap& rows)
{
    std::vector<std::string> problems;
    std::map<std::string, std::string> places;
    const auto look = [&](const std::string& place, const std::string& text, bool isSentence) {
        if (const std::string problem = problemOf(text, isSentence); !problem.empty())
            problems.push_back(place + ": " + problem);
        if (!isSentence) return;
        if (const auto [known, isNew] = places.emplace(text, place); !isNew)
            problems.push_back(place + ": the text of " + known->second);
    };
    for (const auto& [key, row] : rows) {
        look(key + " key", key, false);
        look(key + " whatItIs", row.whatItIs, true);
        look(key + " whyTraffic", row.whyTraffic, true);
        if (row.vendor) look(key + " vendor", *row.vendor, false);
        if (row.limitNote) look(key + " limitNote", *row.limitNote, true);
        if (row.limitAdvice == AppExplanation::LimitAdvice::avoid && !row.limitNote)
            problems.push_back(key + " limitNote: missing");
    }
    return problems;
}

/// The rows of a document in data/; empty when it can't be read.
inline ExplanationMap documentRows(const std::string& name)
{
    const auto document = parseJson(fileText(TEST_DATA "/../../data/" + name));
    if (!document || !document->contains("rows")) return {};
    return fromJson<ExplanationMap>((*document)["rows"]).value_or(ExplanationMap{});
}

inline bool isDigest(std::string_view text)
{
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// A day as yyyy-MM-dd.
inline bool isDay(std::string_view text)
{
    if (text.size() != 10) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isRight = i == 4 || i == 7 ? text[i] == '-' : text[i] >= '0' && text[i] <= '9';
        if (!isRight) return false;
    }
    return true;
}

} // namespace quellon
