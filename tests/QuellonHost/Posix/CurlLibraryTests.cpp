#include "QuellonHost/Posix/CurlLibrary.h"

#include <gtest/gtest.h>

namespace quellon {
namespace {

TEST(CurlLibrary, isLoadedOnceAndKnowsAllThatIsUsed)
{
    const CurlLibrary* const curl = CurlLibrary::load();
    ASSERT_NE(curl, nullptr);
    EXPECT_EQ(CurlLibrary::load(), curl);
    EXPECT_EQ(&CurlLibrary::loaded(), curl);
    CURL* const handle = curl->easyInit();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(curl->easySet(handle, CURLOPT_PROTOCOLS_STR, "https"), CURLE_OK); // the latest that is used
    curl->easyCleanup(handle);
}

} // namespace
} // namespace quellon
