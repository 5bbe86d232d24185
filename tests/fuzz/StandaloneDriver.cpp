// Feeds a fuzz target where libFuzzer is not at hand: every file of the corpus as it is, then a fixed count of mutated
// pieces of them. The same arguments give the same inputs everywhere. An input that ends the run badly is written to
// a file in the current folder, named for the program; given as the only argument, a file is run alone.

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t largestInput = 4096;

std::string currentInput;
std::string failedInputFile;

void keepInput(int signal)
{
    if (std::FILE* file = std::fopen(failedInputFile.c_str(), "wb")) {
        std::fwrite(currentInput.data(), 1, currentInput.size(), file);
        std::fclose(file);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void run(std::string input)
{
    currentInput = std::move(input);
    // An exact copy on the heap, so that a sanitizer sees the first byte read beyond its end.
    const std::vector<std::uint8_t> bytes(currentInput.begin(), currentInput.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::string content(const std::filesystem::path& file)
{
    std::ifstream stream{file, std::ios::binary};
    if (!stream) {
        std::fprintf(stderr, "can't read %s\n", file.c_str());
        std::exit(2);
    }
    return {std::istreambuf_iterator<char>{stream}, {}};
}

std::vector<std::string> readCorpus(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator{folder}) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<std::string> corpus;
    for (const auto& file : files) corpus.push_back(content(file));
    return corpus;
}

/// One entry of a dictionary without its quotes, with \\, \" and \xNN replaced.
std::string unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
        } else if (text[i + 1] == 'x' && i + 3 < text.size()) {
            result += static_cast<char>(std::stoi(std::string{text.substr(i + 2, 2)}, nullptr, 16));
            i += 3;
        } else {
            result += text[++i];
        }
    }
    return result;
}

std::vector<std::string> readTokens(const std::filesystem::path& file)
{
    std::ifstream lines{file};
    std::vector<std::string> tokens;
    for (std::string line; std::getline(lines, line);) {
        if (line.size() >= 2 && line.front() == '"' && line.back() == '"') {
            tokens.push_back(unescaped(std::string_view{line}.substr(1, line.size() - 2)));
        }
    }
    return tokens;
}

class Mutator {
public:
    Mutator(std::vector<std::string> corpus, std::vector<std::string> tokens)
        : corpus_{std::move(corpus)}, tokens_{std::move(tokens)}
    {
    }

    std::string next()
    {
        std::string input = piece(largestInput);
        for (std::size_t left = 1 + below(8); left > 0; --left) mutate(input);
        input.resize(std::min(input.size(), largestInput));
        return input;
    }

private:
    /// A number from 0 to `end` - 1; 0 when `end` is 0.
    std::size_t below(std::size_t end) { return end == 0 ? 0 : static_cast<std::size_t>(random_() % end); }

    /// A part of a corpus file of at most `limit` bytes, from its beginning every other time.
    std::string piece(std::size_t limit)
    {
        const std::string& whole = corpus_[below(corpus_.size())];
        const std::size_t begin = below(2) == 0 ? 0 : below(whole.size());
        return whole.substr(begin, 1 + below(limit));
    }

    void mutate(std::string& input)
    {
        const std::size_t at = below(input.size() + 1);
        const std::size_t length = std::min(1 + below(32), input.size() - at);
        switch (below(6)) {
        case 0:
            if (at < input.size()) input[at] = static_cast<char>(random_());
            break;
        case 1:
            input.insert(at, tokens_[below(tokens_.size())]);
            break;
        case 2:
            input.replace(at, length, tokens_[below(tokens_.size())]);
            break;
        case 3:
            input.erase(at, length);
            break;
        case 4:
            input.insert(below(input.size() + 1), input.substr(at, length));
            break;
        default:
            input.insert(at, piece(256));
            break;
        }
    }

    std::vector<std::string> corpus_;
    std::vector<std::string> tokens_;
    std::mt19937_64 random_{1};
};

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    failedInputFile = std::filesystem::path{argv[0]}.filename().string() + ".failed";
    std::signal(SIGABRT, keepInput);
    std::signal(SIGSEGV, keepInput);
    if (arguments.size() == 1) {
        run(content(arguments[0]));
        return 0;
    }
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: %s RUNS DICTIONARY FOLDER...\n       %s FILE\n", argv[0], argv[0]);
        return 2;
    }
    std::vector<std::string> corpus;
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        for (auto& each : readCorpus(arguments[i])) corpus.push_back(std::move(each));
    }
    const auto tokens = readTokens(arguments[1]);
    if (corpus.empty() || tokens.empty()) {
        std::fprintf(stderr, "no corpus, or no dictionary\n");
        return 2;
    }
    run("");
    for (const auto& each : corpus) run(each);
    const std::size_t runs = std::stoul(arguments[0]);
    Mutator mutator{corpus, tokens};
    for (std::size_t i = 0; i < runs; ++i) run(mutator.next());
    std::printf("%zu files and %zu mutated inputs held\n", corpus.size(), runs);
    return 0;
}
