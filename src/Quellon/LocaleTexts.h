#pragma once

#include "QuellonCore/Presentation/DateTexts.h"

#include <QLocale>

namespace quellon::LocaleTexts {

/// How this locale writes a month and a day of it: its abbreviated names of the months, in the order and with the signs
/// of its long date without weekday and year. English where that can't be told.
[[nodiscard]] DateTexts dates(const QLocale& locale);

} // namespace quellon::LocaleTexts
