#pragma once

namespace quellon {

/// Makes characters mean UTF-8 for this process: the user's own character set where it is UTF-8, otherwise the plain
/// UTF-8 one of the system. Numbers and dates stay in the "C" locale. False when the system has no UTF-8 locale at all;
/// then only ASCII is drawn. To be called once, before anything else runs.
bool useUtf8Locale();

} // namespace quellon
