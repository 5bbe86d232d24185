#include "Check.h"
#include "QuellonCore/Measurement/InterfaceCounter.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    const std::string row = "\nen0 1500 <Link#4> 1 0 300 2 0 400 0\n";
    for (const char* interface : {"en0", "lo0", "utun0", ""}) {
        const auto counter = InterfaceCounter::parse(text, interface);
        if (counter) {
            FUZZ_CHECK(fuzz::contains(text, std::to_string(counter->inBytes)));
            FUZZ_CHECK(fuzz::contains(text, std::to_string(counter->outBytes)));
            FUZZ_CHECK(fuzz::contains(text, interface));
            FUZZ_CHECK(fuzz::contains(text, "<Link"));
            FUZZ_CHECK(InterfaceCounter::parse(text + row, interface) == counter);
        }
    }
    const auto counter = InterfaceCounter::parse(text, "en0");
    FUZZ_CHECK(InterfaceCounter::parse(text + row, "en0") == counter.value_or(InterfaceCounter{300, 400}));
    return 0;
}
