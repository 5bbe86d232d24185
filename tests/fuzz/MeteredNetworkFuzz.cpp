#include "Check.h"
#include "QuellonCore/Measurement/MeteredNetwork.h"
#include "QuellonCore/Support/Text.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quellon {
namespace {

/// A route's text, and what the interface's text is if it is asked for.
struct Texts {
    std::string route;
    std::string flags;
};

void check(const Texts& texts, std::span<const std::string_view> gateways)
{
    int calls = 0;
    const auto ifconfigOutput = [&] {
        ++calls;
        return texts.flags;
    };
    const MeteredStatus status = MeteredNetwork::evaluate(texts.route, ifconfigOutput, gateways);
    FUZZ_CHECK(calls <= 1);
    if (status.interface.empty()) {
        FUZZ_CHECK(status == (MeteredStatus{false, "", "No default route — offline"}));
        FUZZ_CHECK(calls == 0);
        return;
    }
    FUZZ_CHECK(fuzz::contains(texts.route, status.interface));
    FUZZ_CHECK(trimmed(status.interface) == status.interface);
    FUZZ_CHECK(status.detail.starts_with(status.interface + " · "));
    const bool isFlagged = fuzz::contains(texts.flags, "constrained") || fuzz::contains(texts.flags, "expensive") ||
                           fuzz::contains(texts.flags, "cellular");
    if (calls == 0) {
        FUZZ_CHECK(status.isMetered && status.detail.ends_with(" (hotspot range)"));
    } else {
        FUZZ_CHECK(status.isMetered == isFlagged);
        FUZZ_CHECK(status.isMetered || status.detail.ends_with(" · not metered"));
    }
    if (gateways.empty()) FUZZ_CHECK(calls == 1);
}

} // namespace
} // namespace quellon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    const auto half = text.find('\0');
    const std::string first = text.substr(0, half);
    const std::string second = half == std::string::npos ? text : text.substr(half + 1);
    constexpr std::array<std::string_view, 2> others{"10.", "192.168."};
    for (const Texts& texts : {Texts{first, second}, Texts{first, ""}, Texts{"interface: en0\n" + first, second}}) {
        check(texts, MeteredNetwork::defaultHotspotGateways);
        check(texts, others);
        check(texts, {});
    }
    return 0;
}
