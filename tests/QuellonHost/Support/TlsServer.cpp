#include "QuellonHost/Support/TlsServer.h"

#include "QuellonHost/Posix/PipeSignalBlock.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace quellon::testing {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view digits = "0123456789abcdef";

std::string toHexadecimal(std::string_view bytes)
{
    std::string result;
    result.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        result += digits[static_cast<unsigned char>(byte) >> 4U];
        result += digits[static_cast<unsigned char>(byte) & 15U];
    }
    return result;
}

std::string fromHexadecimal(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        result += static_cast<char>(digits.find(text[i]) * 16 + digits.find(text[i + 1]));
    }
    return result;
}

ChildProcess startServer(const TemporaryFolder& folder)
{
    const std::string script = TEST_DATA "/../QuellonHost/Support/tls_server.py";
    auto process =
        ChildProcess::start({"/usr/bin/env", {"python3", script, folder.path().string()}}, {.withInput = true});
    if (!process) throw std::runtime_error{"the server was not started"};
    return std::move(*process);
}

void awaitReady(int descriptor, short events)
{
    pollfd waited{descriptor, events, 0};
    if (poll(&waited, 1, 30'000) != 1) throw std::runtime_error{"the server is stuck"};
}

} // namespace

TlsServer::TlsServer() : process_{startServer(folder_)}
{
    const auto about = readLine();
    authority_ = about.at("authority").get<std::string>();
    ports_ = about.at("ports").get<std::map<std::string, int>>();
}

TlsServer::~TlsServer()
{
    process_.input.close(); // which ends it
    if (process_.reap(std::chrono::steady_clock::now() + 5s)) return;
    process_.kill();
    process_.awaitExit();
}

std::vector<std::string> TlsServer::addresses() const
{
    std::vector<std::string> result;
    for (const auto& [listener, port] : ports_) {
        for (const std::string name : {host, otherHost}) {
            result.push_back(name + ":" + std::to_string(port) + ":127.0.0.1");
        }
    }
    return result;
}

std::string TlsServer::url(std::string_view path, const std::string& listener, std::string_view name) const
{
    return "https://" + std::string{name} + ":" + std::to_string(port(listener)) + std::string{path};
}

void TlsServer::reply(std::string_view path, const std::vector<Step>& steps, End end)
{
    constexpr std::array<const char*, 3> ends{"hang", "close", "cut"};
    auto list = nlohmann::json::array();
    for (const auto& step : steps) {
        nlohmann::json entry{{"bytes", toHexadecimal(step.bytes)}};
        if (step.every) entry["every"] = *step.every;
        list.push_back(std::move(entry));
    }
    ask({{"do", "reply"}, {"path", path}, {"steps", list}, {"end", ends.at(static_cast<std::size_t>(end))}});
}

void TlsServer::reply(std::string_view path, int status, std::string_view body)
{
    reply(path, {{"HTTP/1.1 " + std::to_string(status) + " As told\r\nContent-Length: " + std::to_string(body.size()) +
                  "\r\n\r\n" + std::string{body}}});
}

std::vector<std::string> TlsServer::awaitRequests(std::size_t count)
{
    return await("received", count);
}

std::vector<std::string> TlsServer::awaitEnds(std::size_t count)
{
    return await("closed", count);
}

std::vector<std::string> TlsServer::await(const char* what, std::size_t count)
{
    const auto state = ask({{"do", "await"}, {"what", what}, {"count", count}});
    std::vector<std::string> result;
    for (const auto& bytes : state.at("exchanges")) result.push_back(fromHexadecimal(bytes.get<std::string>()));
    return result;
}

int TlsServer::connections(const std::string& listener)
{
    return ask({{"do", "look"}}).at("connections").at(listener).get<int>();
}

std::string TlsServer::gzippedZeros(std::size_t count)
{
    return fromHexadecimal(ask({{"do", "gzip"}, {"zeros", count}}).at("bytes").get<std::string>());
}

void TlsServer::forget()
{
    ask({{"do", "forget"}});
}

nlohmann::json TlsServer::ask(const nlohmann::json& command)
{
    const PipeSignalBlock block;
    const std::string line = command.dump() + "\n";
    for (std::size_t sent = 0; sent < line.size();) {
        awaitReady(process_.input.get(), POLLOUT);
        const auto count = write(process_.input.get(), line.data() + sent, line.size() - sent);
        if (count < 0 && errno == EPIPE) break; // readLine tells
        if (count > 0) sent += static_cast<std::size_t>(count);
    }
    return readLine();
}

nlohmann::json TlsServer::readLine()
{
    std::array<char, 65536> bytes{};
    std::size_t end = 0;
    while ((end = unread_.find('\n')) == std::string::npos) {
        awaitReady(process_.output.get(), POLLIN);
        const auto count = read(process_.output.get(), bytes.data(), bytes.size());
        if (count <= 0) throw std::runtime_error{"the server has ended; run tls_server.py by hand to see why"};
        unread_.append(bytes.data(), static_cast<std::size_t>(count));
    }
    const auto line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return nlohmann::json::parse(line);
}

} // namespace quellon::testing
