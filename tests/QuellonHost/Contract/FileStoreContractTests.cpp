#include "QuellonHost/Posix/PosixFileStore.h"
#include "QuellonHost/Support/TemporaryFolder.h"
#include "ScriptedHost.h"

#include <gtest/gtest.h>
#include <string>

namespace quellon {
namespace {

using std::filesystem::path;

struct RealFiles {
    ScriptedHost host; // for an empty environment
    PosixFileStore real{host.host().processes, PosixFileStore::DataFolder::xdg};
    testing::TemporaryFolder folder;

    [[nodiscard]] FileStore& files() { return real; }
    [[nodiscard]] path root() const { return folder.path(); }
    void link(const path& at, const path& target) { std::filesystem::create_symlink(target, at); }
};

struct ScriptedFiles {
    ScriptedHost host;

    [[nodiscard]] FileStore& files() { return host.files(); }
    [[nodiscard]] path root() const { return "/tmp"; }
    void link(const path& at, const path& target) { host.files().link(at, target); }
};

template <typename World>
class FileStoreContract : public ::testing::Test {
protected:
    World world;
    FileStore& files = world.files();
    path root = world.root();
};
using Worlds = ::testing::Types<RealFiles, ScriptedFiles>;
TYPED_TEST_SUITE(FileStoreContract, Worlds);

TYPED_TEST(FileStoreContract, readsWhatWasWritten)
{
    const std::string binary{"a\0b\xFF\n", 5};
    for (const std::string& content : {std::string{}, std::string{"text"}, binary, std::string(1'000'000, 'z')}) {
        ASSERT_TRUE(this->files.write(this->root / "file", content));
        EXPECT_EQ(this->files.read(this->root / "file"), content);
    }
}

TYPED_TEST(FileStoreContract, aFileThatIsTooLargeIsNotRead)
{
    std::string content(FileStore::largestFile, 'z');
    ASSERT_TRUE(this->files.write(this->root / "file", content));
    EXPECT_EQ(this->files.read(this->root / "file").value_or("").size(), content.size());
    content += 'z';
    ASSERT_TRUE(this->files.write(this->root / "file", content));
    EXPECT_EQ(this->files.read(this->root / "file"), std::nullopt);
}

TYPED_TEST(FileStoreContract, aShorterContentLeavesNothingOfTheLonger)
{
    ASSERT_TRUE(this->files.write(this->root / "file", "a long content"));
    ASSERT_TRUE(this->files.write(this->root / "file", "short"));
    EXPECT_EQ(this->files.read(this->root / "file"), "short");
}

TYPED_TEST(FileStoreContract, whatCannotBeDoneIsToldSo)
{
    ASSERT_TRUE(this->files.createDirectories(this->root / "folder"));
    ASSERT_TRUE(this->files.write(this->root / "file", "x"));
    EXPECT_EQ(this->files.read(this->root / "missing"), std::nullopt);
    EXPECT_EQ(this->files.read(this->root / "folder"), std::nullopt);
    EXPECT_EQ(this->files.read(this->root / "file/below"), std::nullopt);
    EXPECT_FALSE(this->files.write(this->root / "missing/file", "x"));
    EXPECT_FALSE(this->files.write(this->root / "folder", "x"));
    EXPECT_FALSE(this->files.write(this->root / "file/below", "x"));
    EXPECT_FALSE(this->files.replace(this->root / "missing", this->root / "file"));
    EXPECT_FALSE(this->files.replace(this->root / "file", this->root / "folder"));
    EXPECT_FALSE(this->files.replace(this->root / "file", this->root / "missing/file"));
    EXPECT_FALSE(this->files.remove(this->root / "missing"));
    EXPECT_FALSE(this->files.createDirectories(this->root / "file"));
    EXPECT_FALSE(this->files.createDirectories(this->root / "file/below"));
    EXPECT_EQ(this->files.read(this->root / "file"), "x");
}

TYPED_TEST(FileStoreContract, writeDoesNotFollowALinkInItsPlace)
{
    ASSERT_TRUE(this->files.createDirectories(this->root / "folder"));
    ASSERT_TRUE(this->files.write(this->root / "folder/target", "target"));
    this->world.link(this->root / "link", this->root / "folder/target");
    this->world.link(this->root / "dangling", this->root / "folder/nothing");
    this->world.link(this->root / "way", this->root / "folder");
    EXPECT_FALSE(this->files.write(this->root / "link", "x"));
    EXPECT_FALSE(this->files.write(this->root / "dangling", "x"));
    EXPECT_EQ(this->files.read(this->root / "folder/target"), "target");
    EXPECT_EQ(this->files.read(this->root / "folder/nothing"), std::nullopt);
    EXPECT_TRUE(this->files.write(this->root / "way/target", "x")) << "only the last part counts";
    EXPECT_EQ(this->files.read(this->root / "folder/target"), "x");
}

TYPED_TEST(FileStoreContract, appendAddsToTheEnd)
{
    const std::string binary{"a\0\xFF\n", 4};
    ASSERT_TRUE(this->files.write(this->root / "file", "first\n"));
    EXPECT_TRUE(this->files.append(this->root / "file", binary));
    EXPECT_TRUE(this->files.append(this->root / "file", ""));
    EXPECT_TRUE(this->files.append(this->root / "file", "last"));
    EXPECT_EQ(this->files.read(this->root / "file"), "first\n" + binary + "last");
}

TYPED_TEST(FileStoreContract, appendOnlyWhereAFileIs)
{
    ASSERT_TRUE(this->files.createDirectories(this->root / "folder"));
    ASSERT_TRUE(this->files.write(this->root / "folder/target", "target"));
    this->world.link(this->root / "link", this->root / "folder/target");
    EXPECT_FALSE(this->files.append(this->root / "missing", "x"));
    EXPECT_FALSE(this->files.append(this->root / "folder", "x"));
    EXPECT_FALSE(this->files.append(this->root / "missing/file", "x"));
    EXPECT_FALSE(this->files.append(this->root / "folder/target/below", "x"));
    EXPECT_FALSE(this->files.append(this->root / "link", "x"));
    EXPECT_EQ(this->files.read(this->root / "missing"), std::nullopt);
    EXPECT_EQ(this->files.read(this->root / "folder/target"), "target");
}

TYPED_TEST(FileStoreContract, replaceMovesTheContentOver)
{
    ASSERT_TRUE(this->files.write(this->root / "new", "new"));
    ASSERT_TRUE(this->files.write(this->root / "old", "old"));
    EXPECT_TRUE(this->files.replace(this->root / "new", this->root / "old"));
    EXPECT_EQ(this->files.read(this->root / "old"), "new");
    EXPECT_EQ(this->files.read(this->root / "new"), std::nullopt);
    EXPECT_TRUE(this->files.replace(this->root / "old", this->root / "fresh"));
    EXPECT_EQ(this->files.read(this->root / "fresh"), "new");
}

TYPED_TEST(FileStoreContract, replaceTakesThePlaceOfALink)
{
    ASSERT_TRUE(this->files.write(this->root / "target", "target"));
    ASSERT_TRUE(this->files.write(this->root / "new", "new"));
    this->world.link(this->root / "link", this->root / "target");
    EXPECT_TRUE(this->files.replace(this->root / "new", this->root / "link"));
    EXPECT_EQ(this->files.read(this->root / "link"), "new");
    EXPECT_EQ(this->files.read(this->root / "target"), "target");
}

TYPED_TEST(FileStoreContract, removes)
{
    ASSERT_TRUE(this->files.write(this->root / "file", "x"));
    EXPECT_TRUE(this->files.remove(this->root / "file"));
    EXPECT_EQ(this->files.read(this->root / "file"), std::nullopt);
    EXPECT_FALSE(this->files.remove(this->root / "file"));
}

TYPED_TEST(FileStoreContract, makesFoldersWithTheirParents)
{
    EXPECT_TRUE(this->files.createDirectories(this->root / "a/b/c"));
    EXPECT_TRUE(this->files.createDirectories(this->root / "a/b/c"));
    EXPECT_TRUE(this->files.createDirectories(this->root / "a/b/d/"));
    EXPECT_TRUE(this->files.write(this->root / "a/b/c/file", "x"));
    EXPECT_TRUE(this->files.write(this->root / "a/b/d/file", "y"));
}

TYPED_TEST(FileStoreContract, listsTheRegularFilesOfAFolder)
{
    ASSERT_TRUE(this->files.createDirectories(this->root / "state/folder"));
    ASSERT_TRUE(this->files.write(this->root / "state/b.json", "four"));
    ASSERT_TRUE(this->files.write(this->root / "state/B.json", ""));
    ASSERT_TRUE(this->files.write(this->root / "state/a\n\xFF", std::string(100'000, 'x')));
    ASSERT_TRUE(this->files.write(this->root / "state/folder/below.json", "x"));
    ASSERT_TRUE(this->files.write(this->root / "other.json", "x"));
    this->world.link(this->root / "state/link.json", this->root / "other.json");
    this->world.link(this->root / "way", this->root / "state");
    for (const char* way : {"state", "state/", "way"}) {
        SCOPED_TRACE(way);
        const auto found = this->files.regularFiles(this->root / way);
        ASSERT_EQ(found.size(), 3U);
        EXPECT_EQ(found[0].name, "B.json");
        EXPECT_EQ(found[0].byteCount, 0U);
        EXPECT_EQ(found[1].name, "a\n\xFF");
        EXPECT_EQ(found[1].byteCount, 100'000U);
        EXPECT_EQ(found[2].name, "b.json");
        EXPECT_EQ(found[2].byteCount, 4U);
    }
}

TYPED_TEST(FileStoreContract, aFolderThatCannotBeListedIsEmpty)
{
    ASSERT_TRUE(this->files.write(this->root / "file", "x"));
    EXPECT_TRUE(this->files.regularFiles(this->root / "missing").empty());
    EXPECT_TRUE(this->files.regularFiles(this->root / "file").empty());
    ASSERT_TRUE(this->files.createDirectories(this->root / "empty"));
    EXPECT_TRUE(this->files.regularFiles(this->root / "empty").empty());
}

TYPED_TEST(FileStoreContract, canonical)
{
    ASSERT_TRUE(this->files.createDirectories(this->root / "real/inner"));
    this->world.link(this->root / "link", this->root / "real");
    this->world.link(this->root / "relative", "real/inner");
    this->world.link(this->root / "twice", "link");
    struct Case {
        const char* name;
        const char* given;
        const char* canonical;
    };
    constexpr Case cases[] = {
        {"plain", "real/inner", "real/inner"},
        {"dots", "real/./inner/../inner", "real/inner"},
        {"trailing separator", "real/inner/", "real/inner"},
        {"trailing separators", "real/inner//", "real/inner"},
        {"link", "link/inner", "real/inner"},
        {"link at the end", "link", "real"},
        {"link with a separator", "link/", "real"},
        {"relative link", "relative", "real/inner"},
        {"link to a link", "twice/inner", "real/inner"},
        {"does not exist", "nowhere/file", "nowhere/file"},
        {"does not exist below a link", "link/nowhere/file", "real/nowhere/file"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(this->files.canonical(this->root / c.given).native(), (this->root / c.canonical).native());
    }
    EXPECT_EQ(this->files.canonical("/").native(), "/");
    EXPECT_TRUE(this->files.canonical("relative/file").is_absolute());
}

TYPED_TEST(FileStoreContract, foldersAreAbsolute)
{
    EXPECT_TRUE(this->files.homeDirectory().is_absolute());
    EXPECT_TRUE(this->files.temporaryDirectory().is_absolute());
    ASSERT_TRUE(this->files.applicationSupportDirectory().has_value());
    EXPECT_TRUE(this->files.applicationSupportDirectory()->is_absolute());
}

} // namespace
} // namespace quellon
