#include "QuellonHost/MacOS/UnifiedLog.h"

#include "QuellonCore/Diagnostics/GuardLog.h"

namespace quellon {

void UnifiedLog::write(std::string_view category, LogLevel level, std::string_view message)
{
    const os_log_type_t type = level == LogLevel::error ? OS_LOG_TYPE_ERROR : OS_LOG_TYPE_INFO;
    os_log_with_type(log(category), type, "%{public}.*s", static_cast<int>(message.size()), message.data());
}

os_log_t UnifiedLog::log(std::string_view category)
{
    const std::lock_guard guard{lock_};
    auto found = logs_.find(category);
    if (found == logs_.end()) {
        const std::string subsystem{GuardLog::subsystem};
        const std::string name{category};
        found = logs_.emplace(name, os_log_create(subsystem.c_str(), name.c_str())).first;
    }
    return found->second;
}

} // namespace quellon
