#include "QuellonHost/Posix/WholeFile.h"

#include "QuellonHost/Posix/Descriptor.h"
#include "QuellonHost/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <unistd.h>

namespace quellon {
namespace {

using WholeFile::Content;
using WholeFile::Problem;

constexpr std::size_t mebibyte = std::size_t{1024} * 1024;

TEST(WholeFile, files)
{
    const testing::TemporaryFolder folder;
    const std::string bytes{"a\0\xFF\n", 4};
    std::ofstream{folder / "file"} << bytes;
    std::ofstream{folder / "empty"} << "";
    EXPECT_EQ(WholeFile::read(folder / "file", mebibyte), Content{bytes});
    EXPECT_EQ(WholeFile::read(folder / "file", 4), Content{bytes}) << "just as large";
    EXPECT_EQ(WholeFile::read(folder / "empty", mebibyte), Content{""});
}

TEST(WholeFile, problems)
{
    const testing::TemporaryFolder folder;
    EXPECT_EQ(WholeFile::read(folder / "missing", mebibyte),
              (Content{Problem{"can't be read: No such file or directory", false}}));
    EXPECT_EQ(WholeFile::read(folder.path(), mebibyte), (Content{Problem{"can't be read: Is a directory", false}}));
    EXPECT_EQ(WholeFile::read(-1, mebibyte), (Content{Problem{"can't be read: Bad file descriptor", false}}));
}

TEST(WholeFile, aLargeFileIsNotTouched)
{
    const testing::TemporaryFolder folder;
    std::ofstream{folder / "large"} << "x";
    std::filesystem::resize_file(folder / "large", 100 * mebibyte);
    EXPECT_EQ(WholeFile::read(folder / "large", 64 * mebibyte), (Content{Problem{"is larger than 64 MB", true}}));
}

TEST(WholeFile, aPipeIsReadToItsEndOrTheLimit)
{
    for (const std::size_t size : {std::size_t{3} * mebibyte, 5 * mebibyte}) {
        auto pipe = makePipe();
        ASSERT_TRUE(pipe);
        std::thread writer{[&] {
            const std::string part(4096, 'x');
            for (std::size_t sent = 0; sent < size; sent += part.size()) {
                if (write(pipe->writeEnd.get(), part.data(), part.size()) < 0) break;
            }
            pipe->writeEnd.close();
        }};
        const auto content = WholeFile::read(pipe->readEnd.get(), 4 * mebibyte);
        const bool isWhole = size < 4 * mebibyte;
        std::string rest(mebibyte, ' ');
        while (read(pipe->readEnd.get(), rest.data(), rest.size()) > 0) {}
        writer.join();
        EXPECT_EQ(content, isWhole ? Content{std::string(size, 'x')} : Content{Problem({"is larger than 4 MB", true})});
    }
}

} // namespace
} // namespace quellon
