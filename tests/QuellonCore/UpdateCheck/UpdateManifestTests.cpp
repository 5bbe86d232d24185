#include "QuellonCore/UpdateCheck/UpdateManifest.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(UpdateManifest, read)
{
    struct Case {
        const char* name;
        const char* text;
        std::optional<UpdateManifest> manifest;
    };
    const Case cases[] = {
        {"what must be there", R"({"latestVersion":"1.3","downloadURL":"u"})", UpdateManifest{"1.3", "u", {}, {}}},
        {"all of it, and more",
         R"({"latestVersion":"1.3","downloadURL":"u","releaseNotesURL":"n","minimumSystemVersion":"6.1","size":[5]})",
         UpdateManifest{"1.3", "u", "n", "6.1"}},
        {"texts are not judged", R"({"latestVersion":"","downloadURL":""})", UpdateManifest{"", "", {}, {}}},
        {"null for what may be missing", R"({"latestVersion":"1","downloadURL":"u","minimumSystemVersion":null})",
         UpdateManifest{"1", "u", {}, {}}},
        {"no version", R"({"downloadURL":"u"})", {}},
        {"no address", R"({"latestVersion":"1.3"})", {}},
        {"a version that is a number", R"({"latestVersion":1.3,"downloadURL":"u"})", {}},
        {"notes that are no text", R"({"latestVersion":"1","downloadURL":"u","releaseNotesURL":5})", {}},
        {"a minimum that is no text", R"({"latestVersion":"1","downloadURL":"u","minimumSystemVersion":["6"]})", {}},
        {"null for what must be there", R"({"latestVersion":null,"downloadURL":"u"})", {}},
        {"an array", "[]", {}},
        {"not JSON", "<html>", {}},
        {"nothing", "", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodeJson<UpdateManifest>(c.text), c.manifest);
    }
}

} // namespace
} // namespace quellon
