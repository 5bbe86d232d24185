#include "QuellonHost/Posix/CurlLibrary.h"

#include <atomic>
#include <dlfcn.h>
#include <mutex>

namespace quellon {

namespace {

// By its binary interface's version, which is that of the header.
#ifdef __APPLE__
constexpr const char* file = "libcurl.4.dylib";
#else
constexpr const char* file = "libcurl.so.4";
#endif

std::atomic<const CurlLibrary*> ready{nullptr};

/// The function of this name. False when there is none.
template <typename Function>
bool find(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool findAll(void* library, CurlLibrary& functions)
{
    return find(library, "curl_global_init", functions.globalInit) &&
           find(library, "curl_slist_append", functions.listAppend) &&
           find(library, "curl_slist_free_all", functions.listFree) &&
           find(library, "curl_easy_init", functions.easyInit) &&
           find(library, "curl_easy_setopt", functions.easySet) &&
           find(library, "curl_easy_getinfo", functions.easyGet) &&
           find(library, "curl_easy_cleanup", functions.easyCleanup) &&
           find(library, "curl_multi_init", functions.multiInit) &&
           find(library, "curl_multi_wakeup", functions.multiWakeup) &&
           find(library, "curl_multi_perform", functions.multiPerform) &&
           find(library, "curl_multi_poll", functions.multiPoll) &&
           find(library, "curl_multi_add_handle", functions.multiAdd) &&
           find(library, "curl_multi_remove_handle", functions.multiRemove) &&
           find(library, "curl_multi_info_read", functions.multiRead) &&
           find(library, "curl_multi_cleanup", functions.multiCleanup);
}

} // namespace

const CurlLibrary* CurlLibrary::load()
{
    static std::mutex lock;
    static CurlLibrary functions;
    const std::lock_guard guard{lock};
    if (ready != nullptr) return ready;
    // Never unloaded: a look-up that was given up may still be using it.
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr || !findAll(library, functions)) return nullptr;
    if (functions.globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) return nullptr;
    ready = &functions;
    return ready;
}

const CurlLibrary& CurlLibrary::loaded()
{
    return *ready;
}

} // namespace quellon
