#include "ReplayScript.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>

namespace {

std::optional<std::string> readAll(std::istream& in)
{
    std::string text{std::istreambuf_iterator<char>{in}, {}};
    return in.bad() ? std::nullopt : std::optional{std::move(text)};
}

std::optional<std::string> readScript(const std::string& name)
{
    if (name == "-") return readAll(std::cin);
    std::error_code error;
    if (std::filesystem::is_directory(name, error)) return std::nullopt; // it opens, and then throws
    std::ifstream file{name, std::ios::binary};
    return file ? readAll(file) : std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: quellon-replay SCRIPT.jsonl (or - for standard input)\n";
        return quellon::replayRefused;
    }
    const auto text = readScript(argv[1]);
    if (!text) {
        std::cerr << "replay: " << argv[1] << " can't be read\n";
        return quellon::replayRefused;
    }
    // Standard output stays with the C library's buffer, which a fatal error writes out before the program ends.
    return quellon::runReplayScript(*text, std::cout, std::cerr);
}
