#pragma once

#include "QuellonCore/Enforcement/EnforcementAction.h"
#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Json.h"
#include "QuellonCore/Support/Time.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// When the guard stepped in lately, and when it asked. An application that is ended, started again by its launcher and
/// ended again spends data on every start; the history is what breaks that loop.
struct EnforcementHistory {
    enum class Kind { enforced, asked };

    static constexpr EnumTable<Kind, 2> kinds{{{
        {Kind::enforced, "enforced", "Enforced"},
        {Kind::asked, "asked", "Asked"},
    }}};
    friend constexpr const auto& enumTable(Kind /*type*/) { return kinds; }

    struct Record {
        std::string app; ///< Its label.
        Date at;
        std::uint64_t bytes = 0;                 ///< What the application had used in the run that ended here.
        std::optional<EnforcementAction> action; ///< What was really done.
        std::optional<std::string> ruleLabel;    ///< The crossed rule as people read it.
        std::optional<bool> loopBreaker;         ///< True when the loop breaker had engaged; otherwise absent.
        std::optional<Kind> kind;                ///< Absent in files from before there were kinds.

        [[nodiscard]] Kind effectiveKind() const { return kind.value_or(Kind::enforced); }

        /// `app`, `at` and `bytes` are required.
        [[nodiscard]] static std::optional<Record> fromJson(const Json& json);
        [[nodiscard]] Json toJson() const;

        bool operator==(const Record&) const = default;
    };

    /// How far back the queries look and records are kept. A record exactly this old still counts.
    static constexpr Seconds window{21'600.0};
    /// The time between two notices about one application.
    static constexpr Seconds noticeInterval{3'600.0};

    std::vector<Record> records;                           ///< Oldest first, in the order of recording.
    std::map<std::string, Date, std::less<>> lastNoticeAt; ///< By application label.

    // The queries look at what is in the window, whenever the last prune was. They take an application's label.

    /// How often the guard stepped in.
    [[nodiscard]] std::size_t count(std::string_view app, Date now) const;
    /// The bytes of these records; `fatal` when they don't fit.
    [[nodiscard]] std::uint64_t wastedBytes(std::string_view app, Date now) const;
    /// How often the guard asked, in the window or in its last `within`.
    [[nodiscard]] std::size_t askCount(std::string_view app, Date now, Seconds within = window) const;
    /// The bytes of the records of asking; `fatal` when they don't fit.
    [[nodiscard]] std::uint64_t askedBytes(std::string_view app, Date now) const;
    /// The last record of stepping in, in the order of recording.
    [[nodiscard]] std::optional<Record> lastRecord(std::string_view app, Date now) const;
    /// True when the guard stepped in more than once.
    [[nodiscard]] bool isRepeatOffender(std::string_view app, Date now) const;
    /// True when the last notice is an hour old, or there was none.
    [[nodiscard]] bool shouldSendNotice(std::string_view app, Date now) const;

    /// Drops what is too old, then appends. A record that no loop breaker engaged at says nothing about it.
    void record(std::string app, std::uint64_t bytes, Date at, std::optional<EnforcementAction> action,
                std::optional<std::string> ruleLabel, bool loopBreaker, Kind kind);
    /// Drops records and notices that are too old.
    void prune(Date now);
    void markNoticed(std::string_view app, Date at);

    /// True when so many enforcements of one application make a loop.
    [[nodiscard]] static constexpr bool isLoop(std::size_t count) { return count > 1; }
    /// What is done where `intended` is called for and the guard has stepped in `count` times already: in a loop
    /// nothing is ended but frozen, so that a download stands still instead of starting over.
    [[nodiscard]] static EnforcementAction actionAfterLoopBreaker(EnforcementAction intended, std::size_t count);

    /// Both keys have defaults. Absent also when the bytes of all records together exceed `FiledSum::largest`.
    [[nodiscard]] static std::optional<EnforcementHistory> fromJson(const Json& json);
    [[nodiscard]] Json toJson() const;

    bool operator==(const EnforcementHistory&) const = default;
};

} // namespace quellon
