#include "QuellonTerminal/Utf8Locale.h"

#include <clocale>
#include <langinfo.h>
#include <string_view>

namespace quellon {

bool useUtf8Locale()
{
    for (const char* name : {"", "C.UTF-8", "en_US.UTF-8"}) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): before any other thread
        if (std::setlocale(LC_CTYPE, name) != nullptr && std::string_view{nl_langinfo(CODESET)} == "UTF-8") return true;
    }
    return false;
}

} // namespace quellon
