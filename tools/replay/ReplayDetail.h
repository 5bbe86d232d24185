#pragma once

#include "QuellonCore/Presentation/AppDetailModel.h"
#include "ReplayPrinter.h"

namespace quellon {

/// All that the details of an application show, in their order; what is not there is left out.
[[nodiscard]] OrderedJson replayDetail(const AppDetailModel& model);

} // namespace quellon
