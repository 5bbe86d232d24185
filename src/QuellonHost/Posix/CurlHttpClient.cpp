#include "QuellonHost/Posix/CurlHttpClient.h"

#include "QuellonHost/Posix/BackgroundThread.h"
#include "QuellonHost/Posix/CurlLibrary.h"
#include "QuellonHost/Posix/CurlTransfer.h"

#include <algorithm>
#include <curl/curl.h>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace quellon {

/// The thread and all that only it touches: libcurl's handles.
class CurlHttpClient::Worker {
public:
    using Deliver = std::function<void(std::uint64_t number, std::optional<HttpResponse> response)>;

    /// `deliver` is called on the thread. Null when the system has nothing left to make one of.
    static std::unique_ptr<Worker> start(const Options& options, Deliver deliver);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Any thread.
    void add(std::uint64_t number, HttpRequest request);

private:
    struct Cleanup {
        void operator()(CURLM* multi) const { CurlLibrary::loaded().multiCleanup(multi); }
    };
    struct Waiting {
        std::uint64_t number;
        HttpRequest request;
    };

    const CurlLibrary& curl_;
    Options options_;
    Deliver deliver_;
    std::unique_ptr<CURLM, Cleanup> multi_;
    std::vector<std::unique_ptr<CurlTransfer>> transfers_; ///< Those that `multi_` drives.
    std::mutex lock_;
    std::vector<Waiting> queue_;
    bool ends_ = false;
    std::thread thread_;

    Worker(const CurlLibrary& curl, const Options& options, Deliver deliver)
        : curl_{curl}, options_{options}, deliver_{std::move(deliver)}, multi_{curl.multiInit()}
    {
    }
    void serve();
    bool admit();
    void begin(Waiting waiting);
    void collect();
    void finish(CURL* handle, CURLcode code);
};

std::unique_ptr<CurlHttpClient::Worker> CurlHttpClient::Worker::start(const Options& options, Deliver deliver)
{
    const CurlLibrary* const curl = CurlLibrary::load();
    if (curl == nullptr) return nullptr;
    std::unique_ptr<Worker> result{new Worker{*curl, options, std::move(deliver)}};
    // Without descriptors left there may be a handle that can't be woken.
    if (!result->multi_ || curl->multiWakeup(result->multi_.get()) != CURLM_OK) return nullptr;
    result->thread_ = startBackgroundThread([worker = result.get()] { worker->serve(); });
    return result->thread_.joinable() ? std::move(result) : nullptr;
}

CurlHttpClient::Worker::~Worker()
{
    if (!thread_.joinable()) return;
    {
        const std::lock_guard guard{lock_};
        ends_ = true;
    }
    curl_.multiWakeup(multi_.get());
    thread_.join();
}

void CurlHttpClient::Worker::add(std::uint64_t number, HttpRequest request)
{
    {
        const std::lock_guard guard{lock_};
        queue_.push_back({number, std::move(request)});
    }
    curl_.multiWakeup(multi_.get());
}

void CurlHttpClient::Worker::serve()
{
    constexpr int longestPause = 3'600'000; // milliseconds; libcurl itself knows when something is due before
    while (admit()) {
        int running = 0;
        curl_.multiPerform(multi_.get(), &running);
        collect();
        curl_.multiPoll(multi_.get(), nullptr, 0, longestPause, nullptr);
    }
    for (const auto& transfer : transfers_) curl_.multiRemove(multi_.get(), transfer->handle());
    transfers_.clear();
}

/// Begins what was added meanwhile. False when all is to end.
bool CurlHttpClient::Worker::admit()
{
    std::vector<Waiting> added;
    {
        const std::lock_guard guard{lock_};
        if (ends_) return false;
        added.swap(queue_);
    }
    for (auto& waiting : added) begin(std::move(waiting));
    return true;
}

void CurlHttpClient::Worker::begin(Waiting waiting)
{
    auto transfer = std::make_unique<CurlTransfer>(waiting.number, std::move(waiting.request), options_);
    if (transfer->handle() != nullptr && curl_.multiAdd(multi_.get(), transfer->handle()) == CURLM_OK) {
        transfers_.push_back(std::move(transfer));
    } else {
        deliver_(waiting.number, std::nullopt);
    }
}

void CurlHttpClient::Worker::collect()
{
    int left = 0;
    while (const CURLMsg* message = curl_.multiRead(multi_.get(), &left)) {
        // The message is gone as soon as its handle is removed.
        if (message->msg == CURLMSG_DONE) finish(message->easy_handle, message->data.result);
    }
}

void CurlHttpClient::Worker::finish(CURL* handle, CURLcode code)
{
    const auto found = std::find_if(transfers_.begin(), transfers_.end(),
                                    [&](const auto& transfer) { return transfer->handle() == handle; });
    if (found == transfers_.end()) return;
    const auto transfer = std::move(*found);
    transfers_.erase(found);
    auto response = transfer->response(code);
    curl_.multiRemove(multi_.get(), handle);
    deliver_(transfer->number(), std::move(response));
}

CurlHttpClient::CurlHttpClient(RunLoop& loop, Options options) : loop_{loop}, options_{std::move(options)} {}

CurlHttpClient::~CurlHttpClient() = default;

void CurlHttpClient::send(HttpRequest request, Done done)
{
    const auto deliver = [&loop = loop_, pending = std::weak_ptr{pending_}](std::uint64_t number,
                                                                            std::optional<HttpResponse> response) {
        loop.post([pending, number, response = std::move(response)]() mutable {
            const auto alive = pending.lock();
            if (!alive) return;
            const auto entry = alive->extract(number);
            if (!entry.empty()) entry.mapped()(std::move(response));
        });
    };
    const auto number = nextNumber_++;
    pending_->emplace(number, std::move(done));
    if (!worker_) worker_ = Worker::start(options_, deliver);
    if (worker_) {
        worker_->add(number, std::move(request));
    } else {
        deliver(number, std::nullopt);
    }
}

} // namespace quellon
