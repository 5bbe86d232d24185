#include "QuellonCore/Knowledge/AppExplanation.h"
#include "QuellonCore/Knowledge/KnowledgeTexts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quellon {
namespace {

/// The judge of the texts finds what it is for.
TEST(KnowledgeTexts, problems)
{
    struct Case {
        const char* name;
        AppExplanation row;
        std::vector<std::string> problems;
    };
    AppExplanation good;
    good.whatItIs = "A radio.";
    good.whyTraffic = "Sends 1 MB.";
    const auto with = [&good](auto change) {
        AppExplanation row = good;
        change(row);
        return row;
    };
    const std::string dashes = [] {
        std::string text;
        for (int i = 0; i < 159; ++i) text += "—";
        return text;
    }();
    const Case cases[] = {
        {"a good one", good, {}},
        {"160 characters", with([&](AppExplanation& row) { row.whatItIs = dashes + "."; }), {}},
        {"161 characters",
         with([&](AppExplanation& row) { row.whatItIs = dashes + "—."; }),
         {"a whatItIs: longer than 160 characters"}},
        {"empty text", with([](AppExplanation& row) { row.whyTraffic = ""; }), {"a whyTraffic: empty"}},
        {"empty vendor", with([](AppExplanation& row) { row.vendor = ""; }), {"a vendor: empty"}},
        {"empty note", with([](AppExplanation& row) { row.limitNote = ""; }), {"a limitNote: empty"}},
        {"two blanks", with([](AppExplanation& row) { row.limitNote = "A  b."; }), {"a limitNote: stray blank"}},
        {"a line end", with([](AppExplanation& row) { row.vendor = "A\nB"; }), {"a vendor: control character"}},
        {"no point", with([](AppExplanation& row) { row.whatItIs = "A radio"; }), {"a whatItIs: no point at the end"}},
        {"a text twice",
         with([](AppExplanation& row) { row.limitNote = row.whatItIs; }),
         {"a limitNote: the text of a whatItIs"}},
        {"to be avoided without a note",
         with([](AppExplanation& row) { row.limitAdvice = AppExplanation::LimitAdvice::avoid; }),
         {"a limitNote: missing"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(problemsOf({{"a", c.row}}), c.problems);
    }
    EXPECT_EQ(
        problemsOf({{"a", good}, {"b", good}}),
        (std::vector<std::string>{"b whatItIs: the text of a whatItIs", "b whyTraffic: the text of a whyTraffic"}));
}

} // namespace
} // namespace quellon
