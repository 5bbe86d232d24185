#pragma once

#include "QuellonCore/Host/HttpClient.h"
#include "QuellonHost/Posix/CurlHttpClient.h"
#include "QuellonHost/Posix/CurlLibrary.h"

#include <cstddef>
#include <cstdint>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <string>

namespace quellon {

/// One exchange: the handle of libcurl, which has been loaded, with everything set, and what has come back. One thread
/// at a time.
class CurlTransfer {
public:
    CurlTransfer(std::uint64_t number, HttpRequest request, const CurlHttpClient::Options& options);
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    [[nodiscard]] std::uint64_t number() const { return number_; }
    /// To be driven; null when libcurl did not take the request.
    [[nodiscard]] CURL* handle() const { return ready_ ? handle_.get() : nullptr; }

    /// What the exchange that ended with `code` gives; absent when it failed. A body that was cut at the limit is no
    /// failure. To be called once.
    [[nodiscard]] std::optional<HttpResponse> response(CURLcode code);

private:
    struct Cleanup {
        void operator()(CURL* handle) const { CurlLibrary::loaded().easyCleanup(handle); }
        void operator()(curl_slist* list) const { CurlLibrary::loaded().listFree(list); }
    };
    using List = std::unique_ptr<curl_slist, Cleanup>;

    std::uint64_t number_;
    HttpRequest request_; ///< libcurl reads the body from here.
    List headers_;
    List addresses_;
    std::string body_;
    std::size_t headerBytes_ = 0;
    bool isHeadWhole_ = false; ///< The empty line after the headers of the last reply has come.
    bool ready_ = true;
    std::unique_ptr<CURL, Cleanup> handle_; ///< Last, so that it goes before what it refers to.

    template <class Value>
    void set(CURLoption option, Value value);
    void append(List& list, const std::string& text);
    void setRequest();
    void setHeaders();
    void setConnection(const CurlHttpClient::Options& options);
    void setLimits();
    [[nodiscard]] bool isOverLimit() const { return body_.size() > request_.maximumBodyBytes; }

    static std::size_t onBody(const char* bytes, std::size_t, std::size_t count, void* self);
    static std::size_t onHeader(const char* bytes, std::size_t, std::size_t count, void* self);
};

} // namespace quellon
