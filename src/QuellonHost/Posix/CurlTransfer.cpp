#include "QuellonHost/Posix/CurlTransfer.h"

#include "QuellonHost/Posix/CurlLibrary.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <sys/socket.h>
#include <type_traits>
#include <utility>

namespace quellon {

namespace {

/// Milliseconds for libcurl, to which 0 would mean without end: at least 1, at most a day.
long milliseconds(Seconds timeout)
{
    constexpr double longest = 86'400'000.0;
    const double wanted = std::ceil(timeout.count() * 1000.0);
    return wanted >= 1.0 ? static_cast<long>(std::min(wanted, longest)) : 1;
}

bool isOneLine(std::string_view text)
{
    return text.find_first_of(std::string_view{"\r\n\0", 3}) == std::string_view::npos;
}

/// The letters of both, without regard to their case.
bool isHeader(std::string_view name, std::string_view lowerCase)
{
    return std::equal(name.begin(), name.end(), lowerCase.begin(), lowerCase.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

/// A socket that no child process inherits.
curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address)
{
#ifdef SOCK_CLOEXEC
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
#else
    return socket(address->family, address->socktype, address->protocol);
#endif
}

} // namespace

CurlTransfer::CurlTransfer(std::uint64_t number, HttpRequest request, const CurlHttpClient::Options& options)
    : number_{number}, request_{std::move(request)}, handle_{CurlLibrary::loaded().easyInit()}
{
    ready_ = handle_ != nullptr;
    if (!ready_) return;
    setRequest();
    setHeaders();
    setConnection(options);
    setLimits();
}

std::optional<HttpResponse> CurlTransfer::response(CURLcode code)
{
    if (code != CURLE_OK && !isOverLimit()) return std::nullopt;
    if (!isHeadWhole_) return std::nullopt; // libcurl is content with headers that break off
    long status = 0;
    CurlLibrary::loaded().easyGet(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    return HttpResponse{static_cast<int>(status), std::move(body_)};
}

template <class Value>
void CurlTransfer::set(CURLoption option, Value value)
{
    static_assert(std::is_same_v<Value, long> || std::is_same_v<Value, curl_off_t> || std::is_pointer_v<Value>);
    ready_ = ready_ && CurlLibrary::loaded().easySet(handle_.get(), option, value) == CURLE_OK;
}

void CurlTransfer::append(List& list, const std::string& text)
{
    curl_slist* const longer = CurlLibrary::loaded().listAppend(list.get(), text.c_str());
    ready_ = ready_ && longer != nullptr && isOneLine(text);
    if (longer == nullptr) return;
    (void)list.release();
    list.reset(longer);
}

void CurlTransfer::setRequest()
{
    ready_ = ready_ && isOneLine(request_.url);
    set(CURLOPT_URL, request_.url.c_str());
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
    set(CURLOPT_MAXREDIRS, CurlHttpClient::mostRedirects);
    set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L); // a redirect could make one up
    if (request_.method == "POST") {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDS, request_.body.c_str());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
    } else {
        set(CURLOPT_FOLLOWLOCATION, 1L);
        ready_ = ready_ && request_.method == "GET";
    }
}

/// A name with a colon and nothing behind it takes away the header that libcurl would add by itself; one with a
/// semicolon is an empty header.
void CurlTransfer::setHeaders()
{
    const auto isGiven = [this](std::string_view name) {
        return std::any_of(request_.headers.begin(), request_.headers.end(),
                           [&](const auto& header) { return isHeader(header.first, name); });
    };
    for (const auto& [name, value] : request_.headers) {
        append(headers_, value.empty() ? name + ";" : (name + ": ").append(value));
    }
    if (!isGiven("accept")) append(headers_, "Accept:");
    if (!isGiven("expect")) append(headers_, "Expect:");
    if (!isGiven("content-type")) append(headers_, "Content-Type:");
    set(CURLOPT_HTTPHEADER, headers_.get());
}

void CurlTransfer::setConnection(const CurlHttpClient::Options& options)
{
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2)); // the least
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_FORBID_REUSE, 1L);
    set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
    set(CURLOPT_DNS_CACHE_TIMEOUT, 0L);
    set(CURLOPT_OPENSOCKETFUNCTION, &openSocket);
    if (!options.certificateAuthorities.empty()) set(CURLOPT_CAINFO, options.certificateAuthorities.c_str());
    for (const auto& address : options.addresses) append(addresses_, address);
    if (addresses_) set(CURLOPT_RESOLVE, addresses_.get());
}

void CurlTransfer::setLimits()
{
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // an exchange out of time does not wait for the thread that looks up its host
    set(CURLOPT_TIMEOUT_MS, milliseconds(request_.timeout));
    set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(request_.timeout));
    set(CURLOPT_WRITEFUNCTION, &onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
}

std::size_t CurlTransfer::onBody(const char* bytes, std::size_t, std::size_t count, void* self)
{
    auto& transfer = *static_cast<CurlTransfer*>(self);
    const std::size_t room = transfer.request_.maximumBodyBytes - transfer.body_.size();
    transfer.body_.append(bytes, count > room ? room + 1 : count);
    return transfer.isOverLimit() ? CURL_WRITEFUNC_ERROR : count;
}

/// One line, its end included, of any reply of the exchange, and of what may follow a body in chunks.
std::size_t CurlTransfer::onHeader(const char* bytes, std::size_t, std::size_t count, void* self)
{
    auto& transfer = *static_cast<CurlTransfer*>(self);
    const std::string_view line{bytes, count};
    if (line.starts_with("HTTP/")) transfer.isHeadWhole_ = false;
    if (line == "\r\n" || line == "\n") transfer.isHeadWhole_ = true;
    transfer.headerBytes_ += count;
    return transfer.headerBytes_ > CurlHttpClient::mostHeaderBytes ? CURL_WRITEFUNC_ERROR : count;
}

} // namespace quellon
