#pragma once

#include "Check.h"
#include "QuellonCore/Host/IdentifierSource.h"
#include "QuellonCore/Support/Json.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What the targets for state files share.
namespace quellon::fuzz {

class CountedIdentifiers final : public IdentifierSource {
public:
    [[nodiscard]] UUID next() override
    {
        UUID result;
        ++count_;
        for (std::size_t i = 0; i < sizeof count_; ++i) result.bytes[i] = static_cast<std::uint8_t>(count_ >> (8 * i));
        return result;
    }

private:
    std::uint64_t count_ = 0;
};

/// Any bytes are a value or none for `read`, and a value comes back as it was saved. Gives it to `use`, which does with
/// it all that the program may.
template <typename Read, typename Use>
void checkStateFile(const std::uint8_t* data, std::size_t size, Read read, Use use)
{
    const auto json = parseJson({reinterpret_cast<const char*>(data), size});
    if (!json) return;
    const auto value = read(*json);
    if (!value) return;
    const auto saved = dumpJson(toJson(*value));
    FUZZ_CHECK(saved.has_value());
    FUZZ_CHECK(!contains(*saved, "\n"));
    FUZZ_CHECK(read(parseJson(*saved).value()) == value);
    use(*value);
}

} // namespace quellon::fuzz
