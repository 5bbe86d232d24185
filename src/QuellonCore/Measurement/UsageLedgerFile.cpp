#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Support/FiledSum.h"
#include "QuellonCore/Support/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

namespace quellon {

namespace {

using Bucket = UsageLedger::Bucket;
using Snapshot = UsageLedger::Snapshot;

bool canBeSummed(const Snapshot& snapshot)
{
    FiledSum sum;
    return std::ranges::all_of(snapshot.buckets, [&sum](const Bucket& bucket) {
        return std::ranges::all_of(bucket.usage, [&sum](const auto& entry) { return sum.add(entry.second); });
    });
}

/// Whether JSON writes the byte of a text as it is.
constexpr bool isPlain(char c)
{
    return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
}

/// Whether none of the eight bytes is a control character, a quote, a backslash or beyond ASCII. A byte minus another
/// borrows from its high bit only where it is smaller; a borrow from the byte below needs a hit in that one.
constexpr bool isPlainAscii(std::uint64_t bytes)
{
    constexpr std::uint64_t each = 0x0101'0101'0101'0101U;
    constexpr auto smaller = [](std::uint64_t word, std::uint64_t than) { return (word - than * each) & ~word; };
    const std::uint64_t hits =
        smaller(bytes, ' ') | smaller(bytes ^ ('"' * each), 1) | smaller(bytes ^ ('\\' * each), 1) | bytes;
    return (hits & (0x80 * each)) == 0;
}

bool isPlainAscii(std::string_view text)
{
    std::uint64_t word = 0;
    const auto isPlainAt = [&](std::size_t place) {
        std::memcpy(&word, text.data() + place, sizeof word);
        return isPlainAscii(word);
    };
    if (text.size() < sizeof word) {
        return std::all_of(text.begin(), text.end(), [](char c) { return isPlain(c) && (c & 0x80) == 0; });
    }
    for (std::size_t place = 0; place + sizeof word <= text.size(); place += sizeof word) {
        if (!isPlainAt(place)) return false;
    }
    return isPlainAt(text.size() - sizeof word);
}

/// Whether the text can stand in JSON as it is.
bool isPlain(std::string_view text)
{
    return isPlainAscii(text) ||
           (std::all_of(text.begin(), text.end(), [](char c) { return isPlain(c); }) && isUtf8(text));
}

/// About as many bytes as the text will have, so that it is not moved while it grows.
std::size_t likelyLength(const Snapshot& snapshot)
{
    constexpr std::size_t aroundBucket = 50;
    constexpr std::size_t aroundEntry = 6;
    constexpr std::size_t digits = 8;
    std::size_t length = aroundBucket;
    for (const Bucket& bucket : snapshot.buckets) {
        length += aroundBucket;
        for (const auto& [app, pids] : bucket.pids) length += app.size() + aroundEntry + pids.size() * digits;
        for (const auto& [app, bytes] : bucket.usage) length += app.size() + aroundEntry + digits;
    }
    return length;
}

/// Writes compact JSON, with the keys of every object ascending.
class Writer {
public:
    /// Absent for what JSON can't hold.
    std::optional<std::string> write(const Snapshot& snapshot)
    {
        text_.resize(likelyLength(snapshot));
        put(R"({"buckets":[)");
        putEach(snapshot.buckets, [this](const Bucket& bucket) { put(bucket); });
        put("]}");
        text_.resize(length_);
        return isWritable_ ? std::optional{std::move(text_)} : std::nullopt;
    }

private:
    /// Where the next `size` bytes go. Appending to the text piece by piece takes twice as long.
    char* room(std::size_t size)
    {
        if (text_.size() - length_ < size) text_.resize(2 * text_.size() + size);
        return text_.data() + length_;
    }
    void put(char c)
    {
        *room(1) = c;
        ++length_;
    }
    void put(std::string_view text)
    {
        std::memcpy(room(text.size()), text.data(), text.size());
        length_ += text.size();
    }
    void putText(const std::string& text)
    {
        if (!isPlain(text)) return putRare(Json(text));
        put('"');
        put(text);
        put('"');
    }
    void putRare(const Json& json)
    {
        const auto text = dumpJson(json);
        put(text.value_or(""));
        isWritable_ = isWritable_ && text;
    }
    template <std::integral Number>
    void put(Number number)
    {
        constexpr std::size_t most = 20; // of 64 bits and a sign
        char* const begin = room(most);
        length_ += static_cast<std::size_t>(std::to_chars(begin, begin + most, number).ptr - begin);
    }
    void put(const UsageSums::Pids& pids)
    {
        put('[');
        putEach(pids, [this](std::int32_t pid) { put(pid); });
        put(']');
    }
    template <typename Value>
    void put(const FlatMap<Value>& map)
    {
        put('{');
        putEach(map, [this](const auto& entry) {
            putText(entry.first);
            put(':');
            put(entry.second);
        });
        put('}');
    }
    void put(const Bucket& bucket)
    {
        put(R"({"at":)");
        putRare(quellon::toJson(bucket.at));
        put(R"(,"pids":)");
        put(bucket.pids);
        put(R"(,"usage":)");
        put(bucket.usage);
        put('}');
    }
    template <typename Elements, typename Put>
    void putEach(const Elements& elements, Put putElement)
    {
        bool isFirst = true;
        for (const auto& each : elements) {
            if (!isFirst) put(',');
            isFirst = false;
            putElement(each);
        }
    }

    std::string text_;       ///< Larger than what is written.
    std::size_t length_ = 0; ///< Of what is written.
    bool isWritable_ = true;
};

/// Reads what `Writer` writes, and gives up on everything else, such as blanks, unknown keys, keys that do not ascend,
/// escapes and numbers with a point: what it accepts is plainly valid, and all judgement is left to `parseJson`.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    std::optional<Snapshot> read()
    {
        Snapshot snapshot;
        const bool isWhole = take(R"({"buckets":[)") &&
                             readEach(']', [&] { return read(snapshot.buckets.emplace_back()); }) && take('}');
        return isWhole && rest_.empty() ? std::optional{std::move(snapshot)} : std::nullopt;
    }

private:
    bool read(Bucket& bucket)
    {
        return take(R"({"at":)") && read(bucket.at) && take(R"(,"pids":{)") && readMap(bucket.pids) &&
               take(R"(,"usage":{)") && readMap(bucket.usage) && take('}');
    }
    bool read(Date& date)
    {
        const std::string_view number = rest_.substr(0, rest_.find_first_not_of("0123456789+-.eE"));
        const auto json = parseJson(number);
        const auto value = json ? quellon::fromJson<Date>(*json) : std::nullopt;
        rest_.remove_prefix(number.size());
        if (value) date = *value;
        return value.has_value();
    }
    template <typename Value>
    bool readMap(FlatMap<Value>& map)
    {
        return readEach('}', [&] {
            const auto key = takeText();
            Value value{};
            return key && take(':') && read(value) && map.append(*key, std::move(value));
        });
    }
    bool read(UsageSums::Pids& pids)
    {
        return take('[') && readEach(']', [&] {
                   std::int32_t pid = 0;
                   return read(pid) && pids.append(pid);
               });
    }
    /// Of a number with a point or an exponent it leaves these, for which there is no taker.
    template <std::integral Number>
    bool read(Number& number)
    {
        if (rest_.starts_with('-')) return false;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
        const auto length = static_cast<std::size_t>(end - rest_.data());
        if (error != std::errc{} || (length > 1 && rest_.front() == '0')) return false;
        rest_.remove_prefix(length);
        return true;
    }
    std::optional<std::string_view> takeText()
    {
        if (!take('"')) return std::nullopt;
        const std::string_view text = rest_.substr(0, rest_.find('"'));
        rest_.remove_prefix(text.size());
        return take('"') && isPlain(text) ? std::optional{text} : std::nullopt;
    }
    bool take(char expected)
    {
        if (rest_.empty() || rest_.front() != expected) return false;
        rest_.remove_prefix(1);
        return true;
    }
    bool take(std::string_view expected)
    {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(expected.size());
        return true;
    }
    /// Elements with commas between them, up to and including `end`.
    template <typename Read>
    bool readEach(char end, Read readElement)
    {
        if (take(end)) return true;
        while (readElement()) {
            if (take(end)) return true;
            if (!take(',')) return false;
        }
        return false;
    }

    std::string_view rest_;
};

} // namespace

std::optional<Bucket> Bucket::fromJson(const Json& json)
{
    JsonFields fields{json};
    Bucket bucket;
    fields.required("at", bucket.at);
    fields.required("usage", bucket.usage);
    fields.required("pids", bucket.pids);
    return fields.result(std::move(bucket));
}

Json Bucket::toJson() const
{
    Json json = Json::object();
    putField(json, "at", at);
    putField(json, "usage", usage);
    putField(json, "pids", pids);
    return json;
}

std::optional<Snapshot> Snapshot::fromJson(const Json& json)
{
    JsonFields fields{json};
    Snapshot snapshot;
    fields.required("buckets", snapshot.buckets);
    return canBeSummed(snapshot) ? fields.result(std::move(snapshot)) : std::nullopt;
}

Json Snapshot::toJson() const
{
    Json json = Json::object();
    putField(json, "buckets", buckets);
    return json;
}

std::optional<Snapshot> Snapshot::fromJsonText(std::string_view text)
{
    if (auto snapshot = Reader{text}.read()) return canBeSummed(*snapshot) ? std::move(snapshot) : std::nullopt;
    const auto json = parseJson(text);
    return json ? fromJson(*json) : std::nullopt;
}

std::optional<std::string> Snapshot::toJsonText() const
{
    return Writer{}.write(*this);
}

} // namespace quellon
