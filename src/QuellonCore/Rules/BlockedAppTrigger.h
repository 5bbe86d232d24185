#pragma once

#include "QuellonCore/Measurement/UsageLedger.h"
#include "QuellonCore/Support/Calendar.h"
#include "QuellonCore/Support/Time.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// When an application that is always to be blocked really moves data, as against chattering in the background.
namespace quellon::BlockedAppTrigger {

/// The window in which usage is measured.
inline constexpr Seconds windowSeconds{60.0};
/// Bytes in the window that count as moving data.
inline constexpr std::uint64_t floorBytes = std::uint64_t{256} * 1024;

/// The floor in words: "256 KB".
[[nodiscard]] std::string floorDescription();

/// The bytes of an application in the window before `at`.
[[nodiscard]] std::uint64_t usage(std::string_view of, const UsageLedger& in, Date at);

/// True from `floorBytes` on.
[[nodiscard]] constexpr bool isTriggered(std::uint64_t bytes)
{
    return bytes >= floorBytes;
}

/// The end of a mute: the start of the local day after `after`. 24 hours after the start of its own day where the
/// calendar ends.
[[nodiscard]] Date muteDeadline(Date after, const Calendar& calendar);

/// The exception to the block: transfers that the user lets finish. An allowance lasts while the application keeps
/// moving data, and ends by itself once it has been quiet. Lives in the engine and is not saved.
class TransferWatcher {
public:
    /// How long an application may stay below the floor. Nor may it go unobserved for longer.
    static constexpr Seconds quietSeconds{120.0};

    /// An exception that stands.
    struct Allowance {
        std::optional<Date> quietSince; ///< When it fell below the floor; absent while it is moving data.
        Date lastObservedAt;
        bool operator==(const Allowance&) const = default;
    };
    /// By application label.
    using Allowances = std::map<std::string, Allowance, std::less<>>;

    /// Those that stand, whether or not they have run out by now.
    [[nodiscard]] const Allowances& allowances() const { return allowances_; }

    /// A new allowance, which takes the place of an earlier one.
    void allow(std::string_view app, Date at);
    void cancel(std::string_view app);

    /// True when there is an allowance, whether or not it has run out by now.
    [[nodiscard]] bool isAllowing(std::string_view app) const;

    /// Looks at the application, which moved so many bytes in the window before `at`: true while its allowance lasts.
    /// One that has run out is removed.
    [[nodiscard]] bool stillAllowed(std::string_view app, std::uint64_t movingBytes, Date at);

    bool operator==(const TransferWatcher&) const = default;

private:
    Allowances allowances_;
};

} // namespace quellon::BlockedAppTrigger
