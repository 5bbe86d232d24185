#include "QuellonHost/Linux/JournalLog.h"

#define SD_JOURNAL_SUPPRESS_LOCATION // the line of this file says nothing about the message

#include <array>
#include <string>
#include <sys/uio.h>
#include <syslog.h>
#include <systemd/sd-journal.h>

namespace quellon {

namespace {

/// The field as the journal takes it. It only reads what it is given a writable pointer to.
iovec field(const std::string& text)
{
    return {const_cast<char*>(text.data()), text.size()}; // NOLINT
}

} // namespace

void JournalLog::write(std::string_view category, LogLevel level, std::string_view message)
{
    static const std::string identifier = "SYSLOG_IDENTIFIER=quellon";
    const std::string priority = "PRIORITY=" + std::to_string(level == LogLevel::error ? LOG_ERR : LOG_INFO);
    const std::string categoryField = "QUELLON_CATEGORY=" + std::string{category};
    const std::string messageField = "MESSAGE=" + std::string{message};
    const std::array<iovec, 4> fields{field(identifier), field(priority), field(categoryField), field(messageField)};
    (void)sd_journal_sendv(fields.data(), static_cast<int>(fields.size()));
}

} // namespace quellon
