#include "Check.h"
#include "NaiveNettop.h"
#include "QuellonCore/Measurement/NettopParser.h"
#include "QuellonCore/Support/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quellon {
namespace {

void checkSamples(std::string_view text, const std::vector<ConnectionSample>& samples)
{
    FUZZ_CHECK(samples.size() <= static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
    for (const auto& each : samples) {
        FUZZ_CHECK(each.pid >= 0);
        FUZZ_CHECK(fuzz::contains(text, each.connection));
        FUZZ_CHECK(trimmed(each.connection) == each.connection);
        FUZZ_CHECK(!fuzz::contains(each.connection, ","));
        FUZZ_CHECK(!LANClassifier::isLANConnection(each.connection));
    }
}

/// True when `part` is `whole` with some of its samples left out.
bool isSubsequence(const std::vector<ConnectionSample>& part, const std::vector<ConnectionSample>& whole)
{
    auto next = whole.begin();
    for (const auto& each : part) {
        next = std::find(next, whole.end(), each);
        if (next == whole.end()) return false;
        ++next;
    }
    return true;
}

} // namespace
} // namespace quellon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    const auto all = NettopParser::parse(text);
    checkSamples(text, all);
    FUZZ_CHECK(all == NaiveNettop::parse(text, ""));
    FUZZ_CHECK(all == NettopParser::parse(text, ""));
    const auto some = NettopParser::parse(text, "en0");
    FUZZ_CHECK(some == NaiveNettop::parse(text, "en0"));
    FUZZ_CHECK(isSubsequence(some, all));
    // What follows never changes what was read.
    const auto more = NettopParser::parse(text + "\nt,app.7,,1,2,\nt,a<->b,en0,1,2,\n");
    FUZZ_CHECK(more.size() >= all.size() && std::equal(all.begin(), all.end(), more.begin()));
    return 0;
}
