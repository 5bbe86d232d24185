#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace quellon {

/// The text of a recorded tool output, such as "nettop/021-chrome-helpers.txt". A missing file fails the test.
inline std::string toolCapture(const std::string& name)
{
    std::ifstream file{TEST_DATA "/tools/" + name, std::ios::binary};
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>{file}, {}};
}

} // namespace quellon
