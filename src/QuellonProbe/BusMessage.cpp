#include "QuellonProbe/BusMessage.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace quellon {
namespace {

constexpr char byteOrder = std::endian::native == std::endian::little ? 'l' : 'B';
constexpr std::size_t fixedHeader = 16;
constexpr unsigned char noAutoStart = 2;
constexpr char protocolVersion = 1;

enum class HeaderField : unsigned char {
    path = 1,
    interface = 2,
    member = 3,
    replySerial = 5,
    destination = 6,
    signature = 8
};

constexpr std::size_t aligned(std::size_t at, std::size_t to)
{
    return (at + to - 1) / to * to;
}

class Writer {
public:
    void align(std::size_t to) { bytes_.resize(aligned(bytes_.size(), to), '\0'); }
    void byte(char value) { bytes_ += value; }
    void number(std::uint32_t value)
    {
        align(sizeof value);
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        bytes_.append(raw, sizeof raw);
    }
    void text(std::string_view value)
    {
        number(static_cast<std::uint32_t>(value.size()));
        bytes_.append(value).append(1, '\0');
    }
    void signature(std::string_view value)
    {
        byte(static_cast<char>(value.size()));
        bytes_.append(value).append(1, '\0');
    }
    void field(HeaderField code, std::string_view type, std::string_view value)
    {
        if (value.empty()) return;
        align(8);
        byte(static_cast<char>(code));
        signature(type);
        if (type == "g")
            signature(value);
        else
            text(value);
    }
    [[nodiscard]] std::string& bytes() { return bytes_; }

private:
    std::string bytes_;
};

/// Reads values one behind the other. Once one is missing or broken, all that follow are absent.
class Reader {
public:
    explicit Reader(std::string_view bytes, std::size_t at = 0) : bytes_{bytes}, at_{at} {}

    [[nodiscard]] std::size_t at() const { return at_; }
    void align(std::size_t to) { at_ = std::min(aligned(at_, to), bytes_.size()); }
    std::optional<unsigned char> byte()
    {
        const auto raw = take(1);
        if (!raw) return std::nullopt;
        return static_cast<unsigned char>(raw->front());
    }
    std::optional<std::uint32_t> number()
    {
        align(sizeof(std::uint32_t));
        const auto raw = take(sizeof(std::uint32_t));
        if (!raw) return std::nullopt;
        std::uint32_t value = 0;
        std::memcpy(&value, raw->data(), sizeof value);
        return value;
    }
    std::optional<std::string_view> text()
    {
        const auto size = number();
        return size ? terminated(*size) : std::nullopt;
    }
    std::optional<std::string_view> signature()
    {
        const auto size = byte();
        return size ? terminated(*size) : std::nullopt;
    }

private:
    std::optional<std::string_view> take(std::size_t size)
    {
        if (size > bytes_.size() - at_) {
            at_ = bytes_.size();
            return std::nullopt;
        }
        const auto taken = bytes_.substr(at_, size);
        at_ += size;
        return taken;
    }
    std::optional<std::string_view> terminated(std::size_t size)
    {
        const auto taken = take(size + 1);
        if (!taken || taken->back() != '\0') return std::nullopt;
        return taken->substr(0, size);
    }

    std::string_view bytes_;
    std::size_t at_;
};

struct Lengths {
    std::size_t fieldsEnd = 0;
    std::size_t body = 0; ///< where it begins
    std::size_t whole = 0;
};

/// Absent when the 16 bytes begin no message of this machine, or one that is too long.
std::optional<Lengths> lengths(std::string_view bytes)
{
    if (bytes[0] != byteOrder || bytes[3] != protocolVersion) return std::nullopt;
    const std::size_t bodySize = Reader{bytes, 4}.number().value_or(BusWire::longestMessage);
    const std::size_t fieldsSize = Reader{bytes, 12}.number().value_or(BusWire::longestMessage);
    if (bodySize > BusWire::longestMessage || fieldsSize > BusWire::longestMessage) return std::nullopt;
    const std::size_t fieldsEnd = fixedHeader + fieldsSize;
    const std::size_t body = aligned(fieldsEnd, 8);
    if (body + bodySize > BusWire::longestMessage) return std::nullopt;
    return Lengths{fieldsEnd, body, body + bodySize};
}

/// Reads one header field into the message; false when it is broken.
bool readField(Reader& fields, BusMessage& message)
{
    const auto code = fields.byte();
    const auto type = fields.signature();
    if (!code || !type) return false;
    if (*type == "u") {
        const auto value = fields.number();
        if (value && *code == static_cast<unsigned char>(HeaderField::replySerial)) message.replySerial = *value;
        return value.has_value();
    }
    if (*type == "g") {
        const auto value = fields.signature();
        if (value && *code == static_cast<unsigned char>(HeaderField::signature)) message.signature = *value;
        return value.has_value();
    }
    return (*type == "s" || *type == "o") && fields.text().has_value();
}

} // namespace

std::string BusWire::encode(const BusCall& call, std::uint32_t serial, bool mayStart)
{
    Writer body;
    for (const auto& argument : call.arguments) body.text(argument);
    Writer message;
    message.byte(byteOrder);
    message.byte(static_cast<char>(BusMessage::Kind::call));
    message.byte(mayStart ? '\0' : static_cast<char>(noAutoStart));
    message.byte(protocolVersion);
    message.number(static_cast<std::uint32_t>(body.bytes().size()));
    message.number(serial);
    message.number(0); // length of the fields, known below
    message.field(HeaderField::path, "o", call.path);
    message.field(HeaderField::interface, "s", call.interface);
    message.field(HeaderField::member, "s", call.member);
    message.field(HeaderField::destination, "s", call.destination);
    message.field(HeaderField::signature, "g", std::string(call.arguments.size(), 's'));
    const auto fields = static_cast<std::uint32_t>(message.bytes().size() - fixedHeader);
    std::memcpy(message.bytes().data() + fixedHeader - sizeof fields, &fields, sizeof fields);
    message.align(8);
    return std::move(message.bytes()) + body.bytes();
}

std::optional<std::size_t> BusWire::length(std::string_view bytes)
{
    if (bytes.size() < fixedHeader) return std::nullopt;
    const auto found = lengths(bytes);
    return found ? found->whole : 0;
}

std::optional<BusMessage> BusWire::decode(std::string_view bytes)
{
    if (bytes.size() < fixedHeader || bytes[1] < 1 || bytes[1] > 4) return std::nullopt;
    const auto found = lengths(bytes);
    if (!found || found->whole != bytes.size()) return std::nullopt;
    BusMessage message;
    message.kind = static_cast<BusMessage::Kind>(bytes[1]);
    Reader fields{bytes.substr(0, found->fieldsEnd), fixedHeader};
    while (fields.at() < found->fieldsEnd) {
        if (!readField(fields, message)) return std::nullopt;
        fields.align(8);
    }
    message.body = bytes.substr(found->body);
    return message;
}

std::optional<std::string> BusWire::text(const BusMessage& message)
{
    if (message.signature != "s" && message.signature != "o") return std::nullopt;
    const auto value = Reader{message.body}.text();
    if (!value) return std::nullopt;
    return std::string{*value};
}

std::optional<std::uint32_t> BusWire::variantNumber(const BusMessage& message)
{
    if (message.signature != "v") return std::nullopt;
    Reader body{message.body};
    if (body.signature() != "u") return std::nullopt;
    return body.number();
}

} // namespace quellon
