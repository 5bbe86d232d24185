#include "QuellonCore/Presentation/AppActionSummary.h"

namespace quellon {

AppActionSummary AppActionSummary::of(std::string_view app, const EnforcementHistory& history, Date now)
{
    AppActionSummary summary;
    summary.enforcementCount = history.count(app, now);
    summary.wastedBytesFloor = history.wastedBytes(app, now);
    summary.askCount = history.askCount(app, now);
    summary.askedBytesFloor = history.askedBytes(app, now);
    summary.lastRecord = history.lastRecord(app, now);
    summary.loopBreakerActive = history.isRepeatOffender(app, now);
    return summary;
}

} // namespace quellon
