#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quellon {

/// Answers requests, a line each, in the order in which they come.
class Server {
public:
    /// What goes on between the requests.
    class Background {
    public:
        virtual ~Background() = default;
        /// Watched for input; -1 for none.
        [[nodiscard]] virtual int descriptor() const = 0;
        /// There is input, or an error.
        virtual void readable() = 0;
        /// Milliseconds until timedOut() is due; -1 for never.
        [[nodiscard]] virtual int timeout() const = 0;
        virtual void timedOut() = 0;
    };

    struct Reply {
        enum class Kind {
            answered,
            misunderstood, ///< the request means nothing; the text is empty
            refused,       ///< the kernel won't have it, and the helper can't go on
        };
        Kind kind = Kind::answered;
        std::string text;
    };
    /// From a request without its line feed to the reply. It says itself on standard error what went wrong.
    using Respond = std::function<Reply(std::string_view request)>;

    /// A longer request is answered as one that can't be understood, and is never held in memory.
    static constexpr std::size_t longestRequest = 256;

    /// Descriptors to read from and to write to; both may be non-blocking. `background` must outlive the server.
    Server(int input, int output, Respond respond, Background& background)
        : input_{input}, output_{output}, respond_{std::move(respond)}, background_{background}
    {
    }

    /// Serves until the input ends or nobody reads the answers any more: 0. 1 after a refusal or an error.
    [[nodiscard]] int run();

private:
    enum class State { going, ended, failed };

    State readInput();
    State serveLines();
    State serve(std::string_view request);
    State write(std::string_view text);

    int input_;
    int output_;
    Respond respond_;
    Background& background_;
    std::string pending_;         ///< the beginning of a request
    bool isSkippingLine_ = false; ///< in the rest of a line that was too long
};

} // namespace quellon
