#pragma once

#include <curl/curl.h>

namespace quellon {

/// What is used of libcurl, which is loaded by the first exchange. With all the libraries it brings along it takes more
/// memory than the rest of the guard, and most guards never ask anything online.
struct CurlLibrary {
    decltype(&curl_global_init) globalInit = nullptr;
    decltype(&curl_slist_append) listAppend = nullptr;
    decltype(&curl_slist_free_all) listFree = nullptr;
    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_setopt) easySet = nullptr;
    decltype(&curl_easy_getinfo) easyGet = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_wakeup) multiWakeup = nullptr;
    decltype(&curl_multi_perform) multiPerform = nullptr;
    decltype(&curl_multi_poll) multiPoll = nullptr;
    decltype(&curl_multi_add_handle) multiAdd = nullptr;
    decltype(&curl_multi_remove_handle) multiRemove = nullptr;
    decltype(&curl_multi_info_read) multiRead = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;

    /// The library, loaded and ready, for the rest of the process's life; null where it is not installed, which the
    /// next call tries again. Any thread.
    [[nodiscard]] static const CurlLibrary* load();
    /// The library after `load` has given it.
    [[nodiscard]] static const CurlLibrary& loaded();
};

} // namespace quellon
