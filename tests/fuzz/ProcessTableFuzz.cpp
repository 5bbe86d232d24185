#include "Check.h"
#include "QuellonCore/Measurement/ProcessTable.h"
#include "QuellonCore/Support/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quellon {
namespace {

void checkLabel(std::string_view command)
{
    const std::string_view label = ProcessTable::appLabel(command);
    FUZZ_CHECK(fuzz::isWithin(command, label));
    FUZZ_CHECK(!fuzz::contains(label, "/"));
    FUZZ_CHECK(ProcessTable::appLabel(label) == label);
    if (!command.ends_with(".app")) { FUZZ_CHECK(ProcessTable::appLabel(std::string{command} + "/") == label); }
    FUZZ_CHECK(ProcessTable::appLabel(std::string{command} + ".app/Contents/Outer.app/x") ==
               ProcessTable::appLabel(std::string{command} + ".app/"));
}

} // namespace
} // namespace quellon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    checkLabel(text);
    const auto table = ProcessTable::parse(text);
    const ProcessEntry* previous = nullptr;
    for (const auto& entry : table) {
        FUZZ_CHECK(previous == nullptr || previous->pid < entry.pid);
        previous = &entry;
        FUZZ_CHECK(table.find(entry.pid) == &entry);
        FUZZ_CHECK(!entry.command.empty());
        FUZZ_CHECK(trimmed(entry.command) == entry.command);
        FUZZ_CHECK(!fuzz::contains(entry.command, "\n"));
        FUZZ_CHECK(fuzz::contains(text, entry.command));
        checkLabel(entry.command);
    }
    FUZZ_CHECK(ProcessTable::parse(text + '\n' + text) == table);
    const auto more = ProcessTable::parse("7 1 1 first\n" + text + "\n 7 8 9 last\n");
    FUZZ_CHECK(more.find(7) != nullptr && *more.find(7) == (ProcessEntry{7, 8, 9, "last"}));
    FUZZ_CHECK(more.size() == table.size() + (table.find(7) == nullptr ? 1U : 0U));
    return 0;
}
