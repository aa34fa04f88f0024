#include "Platform/Keychain/ScriptedRandomSource.h"
#include "Platform/Keychain/SystemRandomSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

TEST(SystemRandomSourceTests, fillsTheWholeBufferAnewEachTime) {
    Platform::SystemRandomSource source;
    std::array<std::byte, 64> first{};
    std::array<std::byte, 64> second{};
    ASSERT_EQ(source.copyBytes(first), 0);
    ASSERT_EQ(source.copyBytes(second), 0);
    EXPECT_NE(first, second);
    // Sixteen zeros at the end of a filled buffer would be a wonder: one in 2 to the power of 128.
    EXPECT_FALSE(std::all_of(first.end() - 16, first.end(), [](auto byte) { return byte == std::byte{}; }));
}

TEST(ScriptedRandomSourceTests, countsUpThroughAllCalls) {
    Platform::ScriptedRandomSource source(254);
    std::array<std::byte, 2> first{};
    std::array<std::byte, 1> second{};
    ASSERT_EQ(source.copyBytes(first), 0);
    ASSERT_EQ(source.copyBytes(second), 0);
    EXPECT_EQ(first, (std::array{std::byte{254}, std::byte{255}}));
    EXPECT_EQ(second, (std::array{std::byte{0}}));
    EXPECT_EQ(source.requestedSizes(), (std::vector<std::size_t>{2, 1}));
}

TEST(ScriptedRandomSourceTests, aFailureLeavesHalfOfTheBuffer) {
    Platform::ScriptedRandomSource source(1);
    source.failsWith(-1);
    std::array<std::byte, 4> buffer{};
    EXPECT_EQ(source.copyBytes(buffer), -1);
    EXPECT_EQ(buffer, (std::array{std::byte{1}, std::byte{2}, std::byte{0}, std::byte{0}}));
}
