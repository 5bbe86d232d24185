#include "QuellonProbe/BusMessage.h"

#include <bit>
#include <cstring>
#include <gtest/gtest.h>

namespace quellon {
namespace {

using namespace std::string_view_literals;

constexpr bool isLittle = std::endian::native == std::endian::little;

/// A message of the four fixed bytes, the lengths and serial, header fields and body.
std::string message(std::string_view front, std::uint32_t bodySize, const std::string& fields, const std::string& body)
{
    std::string bytes{front};
    for (const std::uint32_t number : {bodySize, std::uint32_t{1}, static_cast<std::uint32_t>(fields.size())}) {
        char raw[sizeof number];
        std::memcpy(raw, &number, sizeof number);
        bytes.append(raw, sizeof raw);
    }
    bytes += fields;
    bytes.resize((bytes.size() + 7) / 8 * 8);
    return bytes + body;
}

TEST(BusWire, encode)
{
    if (!isLittle) GTEST_SKIP() << "the expected bytes are those of a little-endian machine";
    const auto call = BusWire::encode({"a.b", "/c", "d.e", "F", {"xy", ""}}, 7, false);
    const std::string expected{"l\1\2\1\x10\0\0\0\7\0\0\0\x47\0\0\0"
                               "\1\1o\0\2\0\0\0/c\0\0\0\0\0\0"
                               "\2\1s\0\3\0\0\0d.e\0\0\0\0\0"
                               "\3\1s\0\1\0\0\0F\0\0\0\0\0\0\0"
                               "\6\1s\0\3\0\0\0a.b\0\0\0\0\0"
                               "\x8\1g\0\2ss\0"
                               "\2\0\0\0xy\0\0\0\0\0\0\0"sv};
    // The last text: four bytes of length and the closing zero; the first is padded to four.
    EXPECT_EQ(call.size(), 16U + 72U + 13U);
    EXPECT_EQ(call.substr(0, 4), expected.substr(0, 4));
    EXPECT_EQ(call.substr(16, 72), expected.substr(16, 72));
    EXPECT_EQ(call[4], 13);
    EXPECT_EQ(BusWire::encode({"a.b", "/c", "d.e", "F", {}}, 7, true)[2], 0) << "may start the service";
    EXPECT_EQ(BusWire::length(call), call.size());
    const auto read = BusWire::decode(call);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, BusMessage::Kind::call);
    EXPECT_EQ(read->signature, "ss");
    EXPECT_EQ(read->body, "\2\0\0\0xy\0\0\0\0\0\0\0"sv);
}

TEST(BusWire, decode)
{
    if (!isLittle) GTEST_SKIP() << "the messages are those of a little-endian machine";
    const std::string serial{"\5\1u\0\x9\0\0\0"sv};
    const std::string number{"\1u\0\0\3\0\0\0"sv};
    const std::string variant{"\x8\1g\0\1v\0\0"sv};
    struct Case {
        const char* name;
        std::string bytes;
        std::optional<BusMessage> expected;
    };
    using Kind = BusMessage::Kind;
    const Case cases[] = {
        {"reply", message("l\2\1\1"sv, 8, serial + variant, number), BusMessage{Kind::reply, 9, "v", number}},
        {"error with a name and no body", message("l\3\1\1"sv, 0, serial + std::string{"\4\1s\0\3\0\0\0a.b\0"sv}, ""),
         BusMessage{Kind::error, 9, "", ""}},
        {"signal", message("l\4\1\1"sv, 0, "", ""), BusMessage{Kind::signal, 0, "", ""}},
        {"field of an unknown code",
         message("l\2\1\1"sv, 0, std::string{"\x63\1s\0\1\0\0\0x\0\0\0\0\0\0\0"sv} + serial, ""),
         BusMessage{Kind::reply, 9, "", ""}},
        {"other byte order", message("B\2\1\1"sv, 0, serial, ""), std::nullopt},
        {"other version", message("l\2\1\2"sv, 0, serial, ""), std::nullopt},
        {"no such kind", message("l\5\1\1"sv, 0, serial, ""), std::nullopt},
        {"kind zero", message("l\0\1\1"sv, 0, serial, ""), std::nullopt},
        {"longer than it says", message("l\2\1\1"sv, 0, serial, "x"), std::nullopt},
        {"shorter than it says", message("l\2\1\1"sv, 9, serial + variant, number), std::nullopt},
        {"field of an unknown type", message("l\2\1\1"sv, 0, std::string{"\5\1x\0\x9\0\0\0"sv}, ""), std::nullopt},
        {"field cut", message("l\2\1\1"sv, 0, serial.substr(0, 6), ""), std::nullopt},
        {"text field longer than the fields", message("l\2\1\1"sv, 0, std::string{"\4\1s\0\x63\0\0\0ab"sv}, ""),
         std::nullopt},
        {"text field of the greatest length", message("l\2\1\1"sv, 0, std::string{"\4\1s\0\xFF\xFF\xFF\xFF"sv}, ""),
         std::nullopt},
        {"text field without its closing zero", message("l\2\1\1"sv, 0, std::string{"\4\1s\0\1\0\0\0xy"sv}, ""),
         std::nullopt},
        {"header alone, cut", "l\2\1\1", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(BusWire::decode(c.bytes), c.expected);
        for (std::size_t size = 0; c.expected && size < c.bytes.size(); ++size) {
            EXPECT_EQ(BusWire::decode(std::string_view{c.bytes}.substr(0, size)), std::nullopt) << size;
        }
    }
}

TEST(BusWire, length)
{
    if (!isLittle) GTEST_SKIP() << "the messages are those of a little-endian machine";
    EXPECT_EQ(BusWire::length("l\2\1\1"), std::nullopt) << "too early to tell";
    EXPECT_EQ(BusWire::length(""), std::nullopt);
    EXPECT_EQ(BusWire::length(message("l\2\1\1"sv, 5, "123", "")), 29U);
    EXPECT_EQ(BusWire::length(message("l\2\1\1"sv, 64 * 1024 - 16, "", "")), 64U * 1024U) << "the longest";
    EXPECT_EQ(BusWire::length(message("l\2\1\1"sv, 64 * 1024 - 15, "", "")), 0U);
    EXPECT_EQ(BusWire::length(message("l\2\1\1"sv, 0xFFFFFFFF, "", "")), 0U);
    EXPECT_EQ(BusWire::length("HTTP/1.1 400 Bad Request"), 0U);
}

TEST(BusWire, bodies)
{
    if (!isLittle) GTEST_SKIP() << "the bodies are those of a little-endian machine";
    const auto reply = [](std::string signature, std::string_view body) {
        return BusMessage{BusMessage::Kind::reply, 1, std::move(signature), std::string{body}};
    };
    EXPECT_EQ(BusWire::text(reply("o", "\2\0\0\0/a\0"sv)), "/a");
    EXPECT_EQ(BusWire::text(reply("s", "\0\0\0\0\0"sv)), "");
    EXPECT_EQ(BusWire::text(reply("u", "\2\0\0\0/a\0"sv)), std::nullopt) << "another type";
    EXPECT_EQ(BusWire::text(reply("s", "\3\0\0\0/a\0"sv)), std::nullopt) << "longer than the body";
    EXPECT_EQ(BusWire::text(reply("s", ""sv)), std::nullopt);
    EXPECT_EQ(BusWire::variantNumber(reply("v", "\1u\0\0\3\0\0\0"sv)), 3U);
    EXPECT_EQ(BusWire::variantNumber(reply("v", "\1i\0\0\3\0\0\0"sv)), std::nullopt) << "holds another type";
    EXPECT_EQ(BusWire::variantNumber(reply("v", "\1u\0\0\3\0\0"sv)), std::nullopt) << "cut";
    EXPECT_EQ(BusWire::variantNumber(reply("v", "\1u"sv)), std::nullopt);
    EXPECT_EQ(BusWire::variantNumber(reply("u", "\3\0\0\0"sv)), std::nullopt) << "no variant";
}

} // namespace
} // namespace quellon
