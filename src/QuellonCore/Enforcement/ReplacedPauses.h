#pragma once

#include "QuellonCore/Enforcement/SuspendedApp.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Measurement/ProcessTable.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quellon {

/// The processes that are frozen still although the record of their freeze has gone, because a later one of the same
/// application, of other processes, took its place. Nobody else knows of them. So each application's are held by a
/// lifeline: they go on when the application does, and at the latest when the guard ends. Where no lifeline can be had
/// nothing is kept, and the watchdog of the earlier freeze thaws them.
class ReplacedPauses {
public:
    /// `host` must outlive this.
    explicit ReplacedPauses(const Host& host) : host_{host} {}
    ReplacedPauses(const ReplacedPauses&) = delete;
    ReplacedPauses& operator=(const ReplacedPauses&) = delete;
    /// Thaws all.
    ~ReplacedPauses();

    /// A freeze of `app` that reached `acted` is about to replace the app's entries in `suspended`: keeps those of
    /// their processes, and of what was kept before, that it did not reach, that are alive, and that `table` does not
    /// list under another label; it need not list them, since it may be older than they are. Of what was kept before
    /// the others go on.
    void keep(const std::string& app, const std::vector<SuspendedApp>& suspended,
              const std::vector<std::int32_t>& acted, const ProcessTable::Entries& table);

    /// Lets the application's processes go on, and forgets them.
    void thaw(std::string_view app);
    void thawAll();

    /// Forgets the processes that are no more, and thaws those of applications that are in `suspended` no more: nobody
    /// could ask for it.
    void prune(const std::vector<SuspendedApp>& suspended);

private:
    struct Kept {
        std::vector<std::int32_t> pids; ///< Ascending.
        std::vector<std::int32_t> held; ///< Those that the lifeline is of; not all, when no further one could be had.
        std::unique_ptr<Lifeline> lifeline;
    };

    void hold(const std::string& app, std::vector<std::int32_t> pids);

    const Host& host_;
    std::map<std::string, Kept, std::less<>> byApp_;
};

} // namespace quellon
