#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Knowledge/ExplanationStore.h"
#include "QuellonCore/Knowledge/KnowledgePack.h"
#include "QuellonCore/Knowledge/LinuxKnowledgePack.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {
namespace {

/// Rows that tell which they are: `whatItIs` is the mark before the key.
ExplanationMap rows(const std::string& mark, std::initializer_list<const char*> keys)
{
    ExplanationMap result;
    for (const char* key : keys) result[key].whatItIs = mark + key;
    return result;
}

/// `whatItIs` of the answer; absent when there is none.
std::optional<std::string> answer(const ExplanationStore& store, std::string_view name)
{
    const auto row = store.explanation(name);
    return row ? std::optional{row->whatItIs} : std::nullopt;
}

struct Lookup {
    const char* name;
    std::string asked;
    std::optional<std::string> answer;
};

TEST(ExplanationStore, looksUpInThePack)
{
    const ExplanationStore store{KnowledgePack::entries()};
    const auto pack = [](const char* key) { return KnowledgePack::entries().at(key).whatItIs; };
    const Lookup cases[] = {
        {"exact", "claude", "Claude Code, Anthropic's CLI coding agent."},
        {"exact, differing in case alone", "Claude", "Claude desktop app (Anthropic's AI assistant)."},
        {"ambiguous without case", "CLAUDE", std::nullopt},
        {"ambiguous in another mixture", "cLaude", std::nullopt},
        {"all capitals", "GOOGLE CHROME", pack("Google Chrome")},
        {"all small", "google chrome", pack("Google Chrome")},
        {"capital of a small key", "BREW", pack("brew")},
        {"with points", "ZOOM.US", pack("zoom.us")},
        {"the Kelvin sign folds to k", "Slac\u212A", pack("Slack")},
        {"empty", "", std::nullopt},
        {"a blank before", " Safari", std::nullopt},
        {"a blank behind", "Safari ", std::nullopt},
        {"beginning of a key", "Safar", std::nullopt},
        {"more than a key", "Safari Technology Preview", std::nullopt},
        {"helper of an application", "Google Chrome Helper", std::nullopt},
        {"a path", "/usr/bin/git", std::nullopt},
        {"a version", "python3.11", std::nullopt},
        {"not UTF-8", "git\xFF", std::nullopt},
        {"a zero byte behind", std::string{"git\0", 4}, std::nullopt},
        {"unknown", "photo-backup", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(answer(store, c.asked), c.answer);
    }
}

TEST(ExplanationStore, everyRowAnswersToItsName)
{
    const ExplanationStore store{KnowledgePack::entries()};
    EXPECT_EQ(store.exact(), KnowledgePack::entries());
    EXPECT_EQ(store.caseFolded().size(), 147U);
    EXPECT_FALSE(store.caseFolded().contains("claude"));
    for (const auto& [key, row] : KnowledgePack::entries()) EXPECT_EQ(store.explanation(key), row) << key;
}

TEST(ExplanationStore, namesThatFoldToTheSameAnswerOnlyExactly)
{
    const ExplanationStore store{rows("", {"Straße", "STRASSE", "strasse", "one"})};
    const Lookup cases[] = {
        {"first", "Straße", "Straße"},
        {"second", "STRASSE", "STRASSE"},
        {"third, its own folded name", "strasse", "strasse"},
        {"a fourth", "Strasse", std::nullopt},
        {"the unambiguous one", "ONE", "one"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(answer(store, c.asked), c.answer);
    }
    EXPECT_EQ(store.caseFolded(), rows("", {"one"}));
}

TEST(ExplanationStore, isEmptyWithoutRows)
{
    const ExplanationStore store{{}};
    EXPECT_EQ(store.explanation(""), std::nullopt);
    EXPECT_EQ(store.explanation("Safari"), std::nullopt);
}

TEST(ExplanationStore, packOutranksFurtherRows)
{
    const ExplanationStore store{rows("pack ", {"One", "two", "TWO", "three"}),
                                 rows("further ", {"One", "ONE", "one", "Two", "four", "FIVE", "five"})};
    const Lookup cases[] = {
        {"the same name", "One", "pack One"},
        {"a further name that differs in case", "one", "pack One"},
        {"one of two in the pack", "two", "pack two"},
        {"a further name that is ambiguous in the pack", "Two", std::nullopt},
        {"in the pack alone", "THREE", "pack three"},
        {"further alone", "four", "further four"},
        {"further alone in another case", "Four", "further four"},
        {"ambiguous among the further ones, exact", "FIVE", "further FIVE"},
        {"ambiguous among the further ones", "Five", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(answer(store, c.asked), c.answer);
    }
}

TEST(ExplanationStore, knowsNamesOfLinuxOnLinuxAlone)
{
    const auto onMac = ExplanationStore::forPlatform(Platform::macOS());
    EXPECT_EQ(onMac, ExplanationStore{KnowledgePack::entries()});
    EXPECT_EQ(onMac.explanation("snapd"), std::nullopt);

    const auto onLinux = ExplanationStore::forPlatform(Platform::linux());
    EXPECT_EQ(onLinux.exact().size(), KnowledgePack::entries().size() + LinuxKnowledgePack::entries().size());
    for (const auto& [key, row] : KnowledgePack::entries()) EXPECT_EQ(onLinux.explanation(key), row) << key;
    for (const auto& [key, row] : LinuxKnowledgePack::entries()) EXPECT_EQ(onLinux.explanation(key), row) << key;
    EXPECT_EQ(onLinux.explanation("firefox"), KnowledgePack::entries().at("Firefox"));
    EXPECT_EQ(onLinux.explanation("CLAUDE"), std::nullopt);
    EXPECT_EQ(onLinux.explanation("PACKAGEKITD"), LinuxKnowledgePack::entries().at("packagekitd"));
}

} // namespace
} // namespace quellon
