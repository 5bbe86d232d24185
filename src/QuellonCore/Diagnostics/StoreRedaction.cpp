#include "QuellonCore/Diagnostics/StoreRedaction.h"

#include "QuellonCore/Support/JsonWalk.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quellon::StoreRedaction {

namespace {

/// What is left of a text, whether it was a key or a value.
RedactedString leftOf(std::string_view text)
{
    const auto beginsCharacter = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; };
    return {static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter)), shape(text)};
}

RedactedKey redactKey(const std::string& key)
{
    return structuralKeys().contains(key) ? RedactedKey::structural(key) : RedactedKey::mapped(leftOf(key));
}

/// Makes a tree of the pieces of a value, which come in their order.
class Builder {
public:
    explicit Builder(int depth) : depth_{depth} {}

    /// A value without parts.
    void add(RedactedJSON value)
    {
        if (isTooDeep()) value = {RedactedJSON::TooDeep{}};
        place(std::move(value));
    }
    /// An array or object begins, whose parts come next. False when it is cut: then its end must not come, and nothing
    /// of what is in it.
    bool begin(bool isObject)
    {
        if (isTooDeep()) {
            place({RedactedJSON::TooDeep{}});
            return false;
        }
        open_.push_back({isObject, {}, {}, {}});
        return true;
    }
    /// The key of the next value.
    void key(std::string key) { open_.back().key = std::move(key); }
    void end()
    {
        Open ended = std::move(open_.back());
        open_.pop_back();
        place(ended.isObject ? object(std::move(ended.members)) : array(std::move(ended.items)));
    }

    [[nodiscard]] RedactedJSON take() { return std::move(whole_); }

private:
    using Member = std::pair<std::string, RedactedJSON>;
    /// An array or object that has not ended.
    struct Open {
        bool isObject;
        std::string key;
        std::vector<Member> members;
        std::vector<RedactedJSON> items;
    };

    int depth_;
    std::vector<Open> open_;
    RedactedJSON whole_;

    [[nodiscard]] bool isTooDeep() const { return depth_ + static_cast<int>(open_.size()) >= maximumDepth; }

    void place(RedactedJSON value)
    {
        if (open_.empty())
            whole_ = std::move(value);
        else if (open_.back().isObject)
            open_.back().members.emplace_back(std::move(open_.back().key), std::move(value));
        else
            open_.back().items.push_back(std::move(value));
    }

    static RedactedJSON array(std::vector<RedactedJSON> items)
    {
        const std::size_t count = items.size();
        return {RedactedJSON::Array{count, std::move(items)}};
    }

    static RedactedJSON object(std::vector<Member> members)
    {
        std::ranges::stable_sort(members, {}, &Member::first);
        RedactedJSON::Object result;
        for (std::size_t i = 0; i < members.size(); ++i) {
            auto& [key, value] = members[i];
            const bool comesAgain = i + 1 < members.size() && members[i + 1].first == key;
            if (!comesAgain) result.fields.push_back({redactKey(key), std::move(value)});
        }
        return {std::move(result)};
    }
};

/// Gives the pieces of a value to a builder.
// NOLINTNEXTLINE(misc-no-recursion): no deeper than the builder wants it
void walk(const Json& value, Builder& builder)
{
    if (value.is_object()) {
        if (!builder.begin(true)) return;
        for (const auto& [key, member] : value.items()) {
            builder.key(key);
            walk(member, builder);
        }
        return builder.end();
    }
    if (value.is_array()) {
        if (!builder.begin(false)) return;
        for (const Json& item : value) walk(item, builder);
        return builder.end();
    }
    if (const auto* text = value.get_ptr<const std::string*>()) return builder.add(redactValue(*text));
    if (const auto* flag = value.get_ptr<const bool*>()) return builder.add({RedactedJSON::Bool{*flag}});
    if (value.is_number()) return builder.add({RedactedJSON::Number{value.dump()}});
    if (value.is_null()) return builder.add({RedactedJSON::Null{}});
    builder.add({RedactedString{}});
}

/// Gives the pieces of a JSON text to a builder, up to the most.
class Events final : public nlohmann::json_sax<Json> {
public:
    explicit Events(Builder& builder) : builder_{builder} {}

    [[nodiscard]] bool areTooMany() const { return values_ > mostValues; }

    bool null() override { return add({RedactedJSON::Null{}}); }
    bool boolean(bool value) override { return add({RedactedJSON::Bool{value}}); }
    bool number_integer(number_integer_t value) override { return add({RedactedJSON::Number{std::to_string(value)}}); }
    bool number_unsigned(number_unsigned_t value) override
    {
        return add({RedactedJSON::Number{std::to_string(value)}});
    }
    bool number_float(number_float_t /*value*/, const string_t& text) override
    {
        constexpr std::string_view others = "+-0123456789eE";
        std::string withPoint = text;
        // In the language of the user it may be a comma.
        if (const auto point = withPoint.find_first_not_of(others); point != std::string::npos) withPoint[point] = '.';
        return add({RedactedJSON::Number{std::move(withPoint)}});
    }
    bool string(string_t& text) override { return cut_ > 0 ? count() : add(redactValue(text)); }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*size*/) override { return begin(true); }
    bool key(string_t& key) override
    {
        if (cut_ == 0) builder_.key(key);
        return true;
    }
    bool end_object() override { return end(); }
    bool start_array(std::size_t /*size*/) override { return begin(false); }
    bool end_array() override { return end(); }
    bool parse_error(std::size_t /*place*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) override
    {
        return false;
    }

private:
    Builder& builder_;
    std::size_t values_ = 0;
    std::size_t cut_ = 0; ///< How many arrays and objects are open below the depth limit.

    bool count() { return ++values_ <= mostValues; }
    bool add(RedactedJSON value)
    {
        if (cut_ == 0) builder_.add(std::move(value));
        return count();
    }
    bool begin(bool isObject)
    {
        if (cut_ > 0 || !builder_.begin(isObject)) ++cut_;
        return count();
    }
    bool end()
    {
        if (cut_ > 0)
            --cut_;
        else
            builder_.end();
        return true;
    }
};

} // namespace

RedactedJSON redact(const Json& value, int depth)
{
    Builder builder{depth};
    walk(value, builder);
    return builder.take();
}

std::variant<RedactedJSON, Refusal> redactText(std::string_view text)
{
    Builder builder{0};
    Events events{builder};
    const auto fault = walkJson(text, events);
    if (!fault) return builder.take();
    if (events.areTooMany()) return Refusal::tooManyValues;
    return *fault == JsonFault::nestsTooDeep ? Refusal::nestsTooDeep : Refusal::notJson;
}

RedactedJSON redactValue(std::string_view text)
{
    if (allowedValues().contains(text)) return {RedactedJSON::Text{std::string{text}}};
    using Shape = RedactedString::Shape;
    const RedactedString left = leftOf(text);
    if (left.shape == Shape::uuid || left.shape == Shape::timestamp) return {RedactedJSON::Text{std::string{text}}};
    return {left};
}

} // namespace quellon::StoreRedaction
