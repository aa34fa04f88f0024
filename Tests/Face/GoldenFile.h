#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

/// Texts kept beside the tests. `QUILLORA_REWRITE_GOLDEN=1` writes what was found in their place, for review.
namespace GoldenFile {

/// `path` from the root of the sources.
inline void expectSame(std::string const& path, std::string const& found) {
    auto const full = std::string(QUILLORA_SOURCE_DIR) + "/" + path;
    if (std::getenv("QUILLORA_REWRITE_GOLDEN") != nullptr) {
        std::ofstream(full, std::ios::binary) << found;
        FAIL() << "rewrote " << path;
    }
    std::ifstream const file(full, std::ios::binary);
    ASSERT_TRUE(file) << "no golden file " << path;
    std::ostringstream expected;
    expected << file.rdbuf();
    EXPECT_EQ(expected.str(), found) << path;
}

} // namespace GoldenFile
