#include "QuellonCore/Diagnostics/NotificationLog.h"

#include "QuellonCore/Persistence/Persistence.h"
#include "QuellonCore/Support/Calendar.h"

#include <fmt/format.h>

#include <string>

namespace quellon {

NotificationLog::NotificationLog(const Host& host)
    : files_{host.files}, clock_{host.clock}, directory_{Persistence{host}.directory()}
{
}

void NotificationLog::diag(std::string_view text) const
{
    static_cast<void>(files_.createDirectories(directory_));
    const Calendar utc;
    const Date now = clock_.now();
    const CalendarDay day = utc.day(now);
    const std::string line =
        fmt::format("[{:04}-{:02}-{:02} {} +0000] {}\n", day.year, day.month, day.day, utc.clockTime(now), text);
    const std::filesystem::path path = directory_ / file;
    if (files_.append(path, line)) return;
    std::filesystem::path temporary = path;
    temporary += ".tmp";
    if (files_.write(temporary, line)) static_cast<void>(files_.replace(temporary, path));
}

} // namespace quellon
