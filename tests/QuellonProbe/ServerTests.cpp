#include "QuellonProbe/Server.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace quellon {
namespace {

using Kind = Server::Reply::Kind;

class NoBackground : public Server::Background {
public:
    [[nodiscard]] int descriptor() const override { return -1; }
    void readable() override {}
    [[nodiscard]] int timeout() const override { return -1; }
    void timedOut() override {}
};

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) out = ends[0], in = ends[1];
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() { closeIn(), closeOut(); }
    void closeIn()
    {
        if (in >= 0) ::close(std::exchange(in, -1));
    }
    void closeOut()
    {
        if (out >= 0) ::close(std::exchange(out, -1));
    }
    void write(std::string_view text) const
    {
        while (!text.empty()) {
            const auto size = ::write(in, text.data(), text.size());
            if (size <= 0) return;
            text.remove_prefix(static_cast<std::size_t>(size));
        }
    }
    [[nodiscard]] std::string readAll() const
    {
        std::string result;
        std::array<char, 4096> buffer;
        for (;;) {
            const auto size = ::read(out, buffer.data(), buffer.size());
            if (size <= 0) return result;
            result.append(buffer.data(), static_cast<std::size_t>(size));
        }
    }
    int out = -1;
    int in = -1;
};

Server::Reply echo(std::string_view request)
{
    if (request == "refuse") return {Kind::refused, {}};
    if (request == "what") return {Kind::misunderstood, {}};
    if (request == "large") return {Kind::answered, std::string(300'000, 'x')};
    return {Kind::answered, "<" + std::string{request} + ">\n"};
}

struct Outcome {
    int status = -1;
    std::string output;
};

/// Serves `input` to its end.
Outcome serve(std::string_view input)
{
    Pipe requests;
    Pipe answers;
    NoBackground background;
    auto status = std::async(std::launch::async, [&] {
        Server server{requests.out, answers.in, echo, background};
        const int result = server.run();
        answers.closeIn();
        requests.closeOut();
        return result;
    });
    std::signal(SIGPIPE, SIG_IGN);
    std::thread writer{[&] {
        requests.write(input);
        requests.closeIn();
    }};
    auto output = answers.readAll();
    writer.join();
    return {status.get(), std::move(output)};
}

TEST(Server, conversations)
{
    struct Case {
        const char* name;
        std::string input;
        int status;
        std::string output;
    };
    const std::string longest(Server::longestRequest, 'a');
    const Case cases[] = {
        {"end at once", "", 0, ""},
        {"one request", "ps\n", 0, "5\n<ps>\n"},
        {"several at once are answered in order", "a\nb c\n", 0, "4\n<a>\n6\n<b c>\n"},
        {"half a request at the end is none", "a\nb", 0, "4\n<a>\n"},
        {"an empty line is a request", "\n", 0, "3\n<>\n"},
        {"one that means nothing", "what\na\n", 0, "0\n4\n<a>\n"},
        {"a refusal ends it", "a\nrefuse\na\n", 1, "4\n<a>\n"},
        {"zero bytes are bytes", std::string{"a\0b\n", 4}, 0, std::string{"6\n<a\0b>\n", 8}},
        {"the longest request", longest + "\n", 0, "259\n<" + longest + ">\n"},
        {"one byte more", longest + "a\nb\n", 0, "0\n4\n<b>\n"},
        {"a megabyte without an end", std::string(1 << 20, 'a'), 0, "0\n"},
        {"a megabyte, then a request", std::string(1 << 20, 'a') + "\nb\n", 0, "0\n4\n<b>\n"},
        {"an answer larger than a pipe", "large\na\n", 0, "300000\n" + std::string(300'000, 'x') + "4\n<a>\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto outcome = serve(c.input);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.output, c.output);
    }
}

TEST(Server, endsWhenNobodyReadsTheAnswers)
{
    std::signal(SIGPIPE, SIG_IGN);
    Pipe requests;
    Pipe answers;
    answers.closeOut();
    requests.write("a\n");
    NoBackground background;
    Server server{requests.out, answers.in, echo, background};
    EXPECT_EQ(server.run(), 0);
}

TEST(Server, endsWhenTheReaderLeavesInTheMiddleOfAnAnswer)
{
    std::signal(SIGPIPE, SIG_IGN);
    for (const int flags : {0, O_NONBLOCK}) {
        SCOPED_TRACE(flags);
        Pipe requests;
        Pipe answers;
        ASSERT_EQ(::fcntl(answers.in, F_SETFL, flags), 0);
        requests.write("large\nlarge\n");
        NoBackground background;
        auto status = std::async(std::launch::async, [&] {
            Server server{requests.out, answers.in, echo, background};
            return server.run();
        });
        std::array<char, 1000> some;
        EXPECT_GT(::read(answers.out, some.data(), some.size()), 0);
        answers.closeOut();
        EXPECT_EQ(status.get(), 0);
    }
}

TEST(Server, writesToADescriptorThatDoesNotBlock)
{
    Pipe requests;
    Pipe answers;
    ASSERT_EQ(::fcntl(answers.in, F_SETFL, O_NONBLOCK), 0);
    requests.write("large\n");
    requests.closeIn();
    NoBackground background;
    auto status = std::async(std::launch::async, [&] {
        Server server{requests.out, answers.in, echo, background};
        const int result = server.run();
        answers.closeIn();
        return result;
    });
    EXPECT_EQ(answers.readAll().size(), 7U + 300'000U);
    EXPECT_EQ(status.get(), 0);
}

TEST(Server, failsWhereThereIsNothingToReadFrom)
{
    Pipe answers;
    NoBackground background;
    Server server{answers.in, answers.in, echo, background};
    Pipe requests;
    requests.closeIn();
    Server broken{::open("/", O_RDONLY | O_CLOEXEC), answers.in, echo, background};
    EXPECT_EQ(broken.run(), 1) << "a folder can't be read";
}

/// Ends the conversation by closing the requests once each of its two kinds of news has come.
class CountingBackground : public Server::Background {
public:
    CountingBackground(Pipe& news, Pipe& requests) : news_{news}, requests_{requests} {}
    [[nodiscard]] int descriptor() const override { return readables == 0 ? news_.out : -1; }
    void readable() override
    {
        ++readables;
        isDue_ = true;
    }
    [[nodiscard]] int timeout() const override { return isDue_ ? 0 : -1; }
    void timedOut() override
    {
        ++timeouts;
        isDue_ = false;
        requests_.closeIn();
    }

    int readables = 0;
    int timeouts = 0;

private:
    Pipe& news_;
    Pipe& requests_;
    bool isDue_ = false;
};

TEST(Server, backgroundHearsItsNewsAndItsTime)
{
    Pipe requests;
    Pipe answers;
    Pipe news;
    news.write("!");
    CountingBackground background{news, requests};
    Server server{requests.out, answers.in, echo, background};
    EXPECT_EQ(server.run(), 0);
    EXPECT_EQ(background.readables, 1);
    EXPECT_EQ(background.timeouts, 1);
}

} // namespace
} // namespace quellon
