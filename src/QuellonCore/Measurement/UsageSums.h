#pragma once

#include "QuellonCore/Measurement/AppUsage.h"
#include "QuellonCore/Support/FlatSet.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quellon {

/// What each application was charged, so kept that the bytes since any moment are one look-up and one subtraction,
/// however many charges there are. Charges may be dated in any order.
class UsageSums {
public:
    using Pids = FlatSet<std::int32_t>;

    /// Adds a charge dated `at`. Takes time that grows with the number of charges of `app` that are dated later.
    /// `fatal` when the bytes of all its charges don't fit.
    void add(std::string_view app, Date at, std::uint64_t bytes, const Pids& pids);

    /// Forgets what `app` was charged before `oldest`; `pids` are those of the charges in question.
    void dropBefore(Date oldest, std::string_view app, const Pids& pids);

    /// Forgets the application.
    void erase(std::string_view app);

    /// Forgets everything.
    void clear() { apps_.clear(); }

    /// The applications with a charge at `cutoff` or later: the bytes and processes of these charges. In no order.
    [[nodiscard]] std::vector<AppUsage> since(Date cutoff) const;

    /// Bytes of `app` at `cutoff` or later. 0 for an unknown app.
    [[nodiscard]] std::uint64_t bytesSince(Date cutoff, std::string_view app) const;

private:
    struct Charge {
        Date at;
        std::uint64_t before; ///< All bytes charged earlier, those already forgotten included; modulo 2^64.
    };
    struct App {
        std::deque<Charge> charges;        ///< Ascending by date, never empty.
        std::uint64_t charged = 0;         ///< All bytes ever charged; modulo 2^64.
        std::map<std::int32_t, Date> pids; ///< The latest charge that each process carried.

        [[nodiscard]] std::uint64_t bytesSince(Date cutoff) const;
    };
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };

    std::unordered_map<std::string, App, TextHash, std::equal_to<>> apps_;
};

} // namespace quellon
