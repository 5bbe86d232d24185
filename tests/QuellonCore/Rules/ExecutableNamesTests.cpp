#include "QuellonCore/Rules/ExecutableNames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quellon {
namespace {

using Names = std::vector<std::string>;

constexpr std::size_t kernelNameLength = 5;

TEST(ExecutableNames, find)
{
    struct Case {
        const char* name;
        Names names;
        const char* command;
        const char* found; ///< "" for nothing.
    };
    const Case cases[] = {
        {"none to find", {}, "/opt/a", ""},
        {"the last component", {"opt", "a"}, "/opt/a", "a"},
        {"a folder", {"opt"}, "/opt/a", ""},
        {"without a folder", {"a"}, "a", "a"},
        {"a slash at the end", {"a"}, "/opt/a/", "a"},
        {"no command", {"a"}, "", ""},
        {"nothing but a slash", {"a"}, "/", ""},
        {"as it stands in the list", {"KonSole"}, "/opt/konsOLE", "KonSole"},
        {"beyond ASCII", {"Straße"}, "/opt/STRASSE", "Straße"},
        {"the first of equals", {"b", "A", "a"}, "/opt/a", "A"},
        {"a beginning", {"abcd"}, "/opt/abc", ""},
        {"more than a name", {"abc"}, "/opt/abcd", ""},
        {"cut by the kernel", {"abcdefg"}, "abcde", "abcdefg"},
        {"cut, case aside", {"abcdefg"}, "ABCDE", "abcdefg"},
        {"cut shorter", {"abcdefg"}, "abcd", ""},
        {"cut longer", {"abcdefg"}, "abcdef", ""},
        {"cut by one byte", {"abcdef"}, "abcde", "abcdef"},
        {"as many letters, one byte more", {"ßabcdef"}, "ẞabc", ""},
        {"a path is never cut", {"abcdefg"}, "/abcde", ""},
        {"of several that begin so, the first", {"x", "abcdefg", "abcdeyz"}, "abcde", "abcdefg"},
        {"a whole name before those that begin so", {"abcdefg", "abcde"}, "abcde", "abcde"},
        {"and on a path", {"abcdefg", "abcde"}, "/opt/abcde", "abcde"},
        {"whole, though long", {"abcdefg"}, "abcdefg", "abcdefg"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ExecutableNames names{c.names, kernelNameLength};
        EXPECT_EQ(names.names(), c.names);
        const std::string* found = names.find(c.command);
        EXPECT_EQ(found != nullptr ? *found : "", c.found);
    }
}

TEST(ExecutableNames, nothingIsCutWithoutALength)
{
    EXPECT_EQ(ExecutableNames{{"abcdefg"}}.find("abcde"), nullptr);
    EXPECT_NE(ExecutableNames{{"abcdefg"}}.find("abcdefg"), nullptr);
    EXPECT_EQ(ExecutableNames{}.find(""), nullptr);
}

TEST(ExecutableNames, areAValue)
{
    ExecutableNames names{{"a"}, kernelNameLength};
    const ExecutableNames copy = names;
    EXPECT_EQ(copy, names);
    names = ExecutableNames{{"b"}, kernelNameLength};
    EXPECT_NE(copy, names);
    EXPECT_NE(copy, (ExecutableNames{{"a"}}));
    EXPECT_EQ(names.find("a"), nullptr);
    ASSERT_NE(copy.find("a"), nullptr);
    EXPECT_EQ(copy.find("a"), copy.names().data()) << "a copy gives its own";
}

} // namespace
} // namespace quellon
