#include "Check.h"
#include "QuellonCore/Measurement/InterfaceNames.h"
#include "QuellonCore/Support/Text.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    const auto names = InterfaceNames::parse(text);
    const auto more = InterfaceNames::parse(text + "\nHardware Port: Last\nDevice: fresh device\n");
    for (const auto& [device, port] : names) {
        for (const std::string& each : {device, port}) {
            FUZZ_CHECK(!each.empty());
            FUZZ_CHECK(trimmed(each) == each);
            FUZZ_CHECK(!fuzz::contains(each, "\n"));
            FUZZ_CHECK(fuzz::contains(text, each));
        }
        FUZZ_CHECK(InterfaceNames::display(device, names) == port);
        FUZZ_CHECK(InterfaceNames::display(device, more) == port);
    }
    FUZZ_CHECK(names.contains("fresh device") || more.size() == names.size() + 1);
    FUZZ_CHECK(InterfaceNames::display("no such\ndevice", names) == "no such\ndevice");
    return 0;
}
