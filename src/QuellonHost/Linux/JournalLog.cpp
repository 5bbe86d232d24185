#include "QuellonHost/Linux/JournalLog.h"

#include "QuellonCore/Diagnostics/GuardLog.h"

#define SD_JOURNAL_SUPPRESS_LOCATION // the line of this file says nothing about the message

#include <sys/uio.h>
#include <syslog.h>
#include <systemd/sd-journal.h>

namespace quellon {

void JournalLog::write(std::string_view category, LogLevel level, std::string_view message)
{
    auto texts = fields(category, level, message);
    std::array<iovec, 5> vectors{};
    for (std::size_t i = 0; i < texts.size(); ++i) vectors[i] = {texts[i].data(), texts[i].size()};
    (void)sd_journal_sendv(vectors.data(), static_cast<int>(vectors.size()));
}

std::array<std::string, 5> JournalLog::fields(std::string_view category, LogLevel level, std::string_view message)
{
    return {"SYSLOG_IDENTIFIER=quellon", "PRIORITY=" + std::to_string(level == LogLevel::error ? LOG_ERR : LOG_INFO),
            "QUELLON_SUBSYSTEM=" + std::string{GuardLog::subsystem}, "QUELLON_CATEGORY=" + std::string{category},
            "MESSAGE=" + std::string{message}};
}

} // namespace quellon
