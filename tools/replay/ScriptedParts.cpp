#include "ScriptedParts.h"

#include <algorithm>
#include <cstddef>

namespace quellon {

void ScriptedLog::write(std::string_view category, LogLevel level, std::string_view message)
{
    const std::lock_guard guard{lock_};
    lines_.push_back({std::string{category}, level, std::string{message}});
    if (observer_ != nullptr) observer_->logged(category, level, message);
}

std::vector<LogLine> ScriptedLog::lines() const
{
    const std::lock_guard guard{lock_};
    return lines_;
}

std::vector<std::string> ScriptedLog::messages(std::string_view category) const
{
    const std::lock_guard guard{lock_};
    std::vector<std::string> result;
    for (const auto& line : lines_) {
        if (line.category == category) result.push_back(line.message);
    }
    return result;
}

void ScriptedLog::clear()
{
    const std::lock_guard guard{lock_};
    lines_.clear();
}

UUID CountedIdentifiers::next()
{
    UUID result;
    result.bytes[6] = 0x40;
    result.bytes[8] = 0x80;
    ++count_;
    constexpr std::size_t countBytes = 6;
    for (std::size_t i = 0; i < countBytes; ++i) {
        result.bytes[result.bytes.size() - 1 - i] = static_cast<std::uint8_t>(count_ >> (8 * i));
    }
    return result;
}

std::optional<std::string> ScriptedProcesses::environment(std::string_view variable) const
{
    const auto found = variables.find(variable);
    if (found == variables.end()) return std::nullopt;
    return found->second;
}

namespace {

class ScriptedReference final : public ProcessReference {
public:
    ScriptedReference(ScriptedProcesses& processes, std::int32_t pid) : ProcessReference{pid}, processes_{processes}
    {
        const auto found = processes_.others.find(pid);
        if (processes_.holdsReferences && found != processes_.others.end()) birth_ = found->second.birth;
    }

    [[nodiscard]] bool isAlive() const override
    {
        const auto found = processes_.others.find(pid());
        return pid() > 0 && found != processes_.others.end() && found->second.alive &&
               (!birth_ || found->second.birth == *birth_);
    }
    bool send(ProcessSignal signal) override
    {
        const bool reaches = isAlive() && !processes_.others.at(pid()).denied;
        if (reaches) take(processes_.others.at(pid()), signal);
        processes_.noteSignal({pid(), signal, reaches});
        return reaches;
    }

private:
    static void take(ScriptedProcess& process, ProcessSignal signal)
    {
        switch (signal) {
        case ProcessSignal::stop:
            process.stopped = true;
            return;
        case ProcessSignal::continue_:
            process.stopped = false;
            return;
        case ProcessSignal::terminate:
            if (process.obeysTerminate) process.alive = false;
            return;
        case ProcessSignal::kill:
            process.alive = false;
            return;
        }
    }

    ScriptedProcesses& processes_;
    std::optional<std::size_t> birth_; ///< Absent: whoever has the id is meant.
};

} // namespace

std::unique_ptr<ProcessReference> ScriptedProcesses::reference(std::int32_t pid)
{
    return std::make_unique<ScriptedReference>(*this, pid);
}

bool ScriptedProcesses::spawnDetached(const Command& command)
{
    if (!canSpawn) return false;
    spawned.push_back(command);
    if (observer_ != nullptr) observer_->spawned(command);
    return true;
}

std::unique_ptr<Lifeline> ScriptedProcesses::lifeline(const std::vector<std::int32_t>& pids)
{
    return lifelines ? lifelines(pids) : nullptr;
}

void ScriptedProcesses::noteSignal(const SentSignal& signal)
{
    signals.push_back(signal);
    if (observer_ != nullptr) observer_->signalled(signal);
}

std::string ScriptedProcesses::startTime(std::int32_t pid) const
{
    const auto found = others.find(pid);
    return found != others.end() && found->second.alive ? found->second.start : "";
}

std::string ScriptedProcesses::parent(std::int32_t pid) const
{
    const auto found = others.find(pid);
    const bool isThere = found != others.end() && found->second.alive;
    if (isThere && found->second.parent) return std::to_string(*found->second.parent);
    std::vector<std::int32_t> line{id};
    line.insert(line.end(), parents.begin(), parents.end());
    const auto place = std::find(line.begin(), line.end(), pid);
    if (place != line.end() && place + 1 != line.end()) return std::to_string(*(place + 1));
    return isThere ? "1" : "";
}

void ScriptedProcesses::exit(int status)
{
    if (!exitStatus) exitStatus = status;
    runLoop_.end();
}

} // namespace quellon
