#include "QuellonCore/Support/CaseFold.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace quellon {
namespace {

TEST(CaseFold, caseFolded)
{
    struct Case {
        const char* name;
        std::string text;
        std::string folded;
    };
    const Case cases[] = {
        {"empty", "", ""},
        {"lower stays", "konsole-2.0", "konsole-2.0"},
        {"ASCII", "KONSOLE", "konsole"},
        {"beside the letters", "@AZ[`az{", "@az[`az{"},
        {"a zero byte", std::string{"A\0B", 3}, std::string{"a\0b", 3}},
        {"umlauts", "ÄÖÜ", "äöü"},
        {"sharp s", "ß", "ss"},
        {"capital sharp s", "ẞ", "ss"},
        {"street in capitals", "STRASSE", "strasse"},
        {"street", "Straße", "strasse"},
        {"sigma", "Σ", "σ"},
        {"final sigma", "ς", "σ"},
        {"dotted capital i", "İ", "i\u0307"},
        {"dotless i", "ı", "ı"},
        {"ligature", "ﬃ", "ffi"},
        {"three letters of one", "ΐ", "\u03B9\u0308\u0301"},
        {"Cyrillic", "ПРИВЕТ", "привет"},
        {"without case", "終端機", "終端機"},
        {"beyond the basic plane", "𐐀", "𐐨"},
        {"not normalised", "A\u0308", "a\u0308"},
        {"a lone continuation byte", "A\x80Ä", "a\x80ä"},
        {"a byte that never occurs", "\xFFÄ\xFE", "\xFFä\xFE"},
        {"cut short at the end", "AÄ\xC3", "aä\xC3"},
        {"cut short before a letter", "\xE7\xB5Z", "\xE7\xB5z"},
        {"overlong", "\xC1\x81", "\xC1\x81"},
        {"surrogate", "\xED\xA0\x80", "\xED\xA0\x80"},
        {"above the last code point", "\xF4\x90\x80\x80", "\xF4\x90\x80\x80"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(caseFolded(c.text), c.folded);
        EXPECT_EQ(caseFolded(c.folded), c.folded);
    }
}

TEST(CaseFold, equalCaseFolded)
{
    struct Case {
        const char* name;
        const char* a;
        const char* b;
        bool equal;
    };
    constexpr Case cases[] = {
        {"both empty", "", "", true},
        {"empty and a letter", "", "a", false},
        {"ASCII", "iTerm2", "ITERM2", true},
        {"a prefix", "tmux", "tmux2", false},
        {"another", "tmux", "tmax", false},
        {"lengths differ in bytes", "STRASSE", "straße", true},
        {"one side ASCII", "\u212Aonsole", "konsole", true},
        {"Cyrillic", "Привет", "пРИВЕТ", true},
        {"Cyrillic that differs", "Привет", "привед", false},
        {"equal bytes that are no text", "\xFF", "\xFF", true},
        {"bytes that are no text", "\xFF", "\xFE", false},
        {"a longer end beyond ASCII", "tmux", "tmuxé", false},
        {"a difference before letters beyond ASCII", "aé", "bé", false},
        {"two letters and one", "assß", "ASSSS", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(equalCaseFolded(c.a, c.b), c.equal);
        EXPECT_EQ(equalCaseFolded(c.b, c.a), c.equal);
        EXPECT_EQ(CaseFoldedHash{}(c.a) == CaseFoldedHash{}(c.b), c.equal);
    }
}

TEST(CaseFold, anyBytesFoldToWhatFoldsNoFurther)
{
    std::mt19937_64 random{20};
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (std::uint64_t left = random() % 12; left > 0; --left) {
            bytes.push_back(static_cast<char>(random() % 3 == 0 ? random() % 128 : random() % 256));
        }
        const std::string folded = caseFolded(bytes);
        EXPECT_EQ(caseFolded(folded), folded);
        EXPECT_TRUE(equalCaseFolded(bytes, folded));
        EXPECT_EQ(CaseFoldedHash{}(bytes), CaseFoldedHash{}(folded));
        const std::string_view cut = std::string_view{bytes}.substr(0, random() % (bytes.size() + 1));
        EXPECT_EQ(equalCaseFolded(bytes, cut), folded == caseFolded(cut));
    }
}

} // namespace
} // namespace quellon
