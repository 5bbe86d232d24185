#include "ActingWorld.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <utility>

namespace quellon {
namespace {

/// Applications, machinery, sessions and other people's processes that come, go and move data at random, under random
/// settings. Ids are given anew, also within the time that a process has to obey SIGTERM.
class RandomWorld {
public:
    explicit RandomWorld(unsigned seed) : random_{seed}
    {
        constexpr EnforcementAction actions[] = {EnforcementAction::suspend, EnforcementAction::terminate,
                                                 EnforcementAction::kill};
        world_.settings.enforcementAction = actions[below(std::size(actions))];
        for (const char* app : {"Player", "Studio", "node", "ssh"}) {
            world_.settings.setPolicy(static_cast<AppPolicy>(below(3)), app);
        }
        world_.host.holdReferences();
        for (int i = 0; i < 12; ++i) arrives();
        world_.begin();
    }

    /// Lets things happen for a round, and looks at every signal of it.
    void play()
    {
        if (below(2) == 0) arrives();
        for (const auto& [pid, entry] : processes_) {
            if (below(2) == 0) world_.moves(pid, below(2 * mebibyte));
        }
        if (below(6) == 0) leaves();
        for (const std::int32_t pid : ended()) isTakenOver(pid);
        if (below(8) == 0) world_.engine->enforceNow({"Studio", "ssh"}, EnforcementAction::suspend);
        if (below(8) == 0) world_.engine->resumeApps({"Player", "Studio"}, 0.0);
        expectOnlyTheAllowed(); // by the table that the user's order saw
        static_cast<void>(world_.round());
        expectOnlyTheAllowed();
        asked_ = std::exchange(newlyAsked_, {});
    }

    [[nodiscard]] std::size_t acted() const { return acted_; }
    /// How many ids became a stranger's while their former owner would have been due for SIGKILL.
    [[nodiscard]] std::size_t takenOver() const { return takenOver_; }

private:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>{0, end - 1}(random_); }

    void arrives()
    {
        constexpr const char* commands[] = {"/Applications/Player.app/Contents/MacOS/Player",
                                            "/Applications/Studio.app/Contents/MacOS/Studio",
                                            "/usr/local/bin/node",
                                            "/usr/bin/ssh",
                                            "-zsh",
                                            "/System/Library/CoreServices/Finder.app/Contents/MacOS/Finder",
                                            "/opt/tool/wget"};
        is(static_cast<std::int32_t>(++lastPid_), commands[below(std::size(commands))]);
    }
    /// From now on a process with this id and command is there.
    void is(std::int32_t pid, const char* command)
    {
        const auto group = below(2) == 0 ? pid : static_cast<std::int32_t>(1'001 + below(lastPid_ - 1'000));
        const ProcessEntry entry{pid, below(5) == 0 ? 0U : 501U, group, command};
        processes_.insert_or_assign(pid, entry);
        world_.process(entry.pid, entry.uid, entry.pgid, entry.command);
        world_.host.process(pid).denied = entry.uid == 0;
        world_.host.process(pid).obeysTerminate = below(2) == 0;
        world_.host.process(pid).start += fmt::format(", {}", ++births_);
    }
    /// Those that were asked to end in the last round and did, and some that now do.
    [[nodiscard]] std::vector<std::int32_t> ended()
    {
        std::vector<std::int32_t> result;
        for (const std::int32_t pid : asked_) {
            if (processes_.contains(pid) && (!world_.host.process(pid).alive || below(2) == 0)) result.push_back(pid);
        }
        return result;
    }
    void isTakenOver(std::int32_t pid)
    {
        is(pid, "/usr/bin/ssh");
        asked_.erase(pid);
        ++takenOver_;
    }
    void leaves()
    {
        const auto gone = std::next(processes_.begin(), static_cast<std::ptrdiff_t>(below(processes_.size())));
        world_.leaves(gone->first);
        processes_.erase(gone);
    }

    /// Every signal but SIGCONT went to a process that the rules of protection allow to be touched.
    void expectOnlyTheAllowed()
    {
        ProtectionPolicy policy = ProtectionPolicy::default_(world_.host.host().platform);
        policy.policies = world_.engine->settings().appPolicies;
        std::vector<ProcessEntry> entries;
        for (const auto& [pid, entry] : processes_) entries.push_back(entry);
        for (const ProcessEntry& entry :
             {ProcessEntry{501, 501, 501, "/Applications/Player.app/Contents/MacOS/Player"},
              ProcessEntry{502, 501, 502, "/Applications/Player.app/Contents/MacOS/Player"}})
            entries.push_back(entry);
        const ProcessTable::Entries table{std::move(entries)};
        const auto groups = policy.protectedGroups(table);
        for (const SentSignal& sent : world_.host.signals()) {
            if (sent.signal == ProcessSignal::continue_) continue;
            const ProcessEntry* process = table.find(sent.pid);
            const bool isFollowUp = sent.signal == ProcessSignal::kill && ends(EnforcementAction::terminate);
            const bool isAllowed = isFollowUp
                                       ? asked_.contains(sent.pid)
                                       : process != nullptr && policy.decide(*process, {900, 850}, groups).isAllowed();
            EXPECT_TRUE(isAllowed) << processSignals.label(sent.signal) << " to " << sent.pid << " "
                                   << (process != nullptr ? process->command : "that is unknown");
            if (sent.signal == ProcessSignal::terminate) newlyAsked_.insert(sent.pid);
            ++acted_;
        }
        world_.host.clearSignals();
    }

    [[nodiscard]] bool ends(EnforcementAction action) const
    {
        return world_.engine->settings().enforcementAction == action;
    }

    std::mt19937 random_;
    ActingWorld world_;
    std::map<std::int32_t, ProcessEntry> processes_;
    std::set<std::int32_t> asked_; ///< To end, in the last round.
    std::set<std::int32_t> newlyAsked_;
    std::size_t lastPid_ = 1'000;
    std::size_t births_ = 0;
    std::size_t acted_ = 0;
    std::size_t takenOver_ = 0;
};

TEST(EngineProperties, onlyWhoIsNotProtectedIsEverSignalled)
{
    std::size_t acted = 0;
    std::size_t takenOver = 0;
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomWorld world{seed};
        for (int round = 0; round < 30; ++round) world.play();
        acted += world.acted();
        takenOver += world.takenOver();
    }
    EXPECT_GT(acted, 1'000U) << "or nothing was tested";
    EXPECT_GT(takenOver, 40U) << "or no id was given anew in time";
}

} // namespace
} // namespace quellon
