#include "Foundation/SecretBytes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>

using Foundation::SecretBytes;

namespace {

constexpr std::array<std::byte, 4> withNul{std::byte{1}, std::byte{0}, std::byte{255}, std::byte{0}};

// What the kernel says about the mapping that holds this address; absent when none does.
std::optional<std::string> flagsOfMapping(void const* address) {
    auto const sought = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream mappings("/proc/self/smaps");
    bool isInside = false;
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t start = 0;
        std::uintptr_t end = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx ", &start, &end) == 2)
            isInside = start <= sought && sought < end;
        if (isInside && line.starts_with("VmFlags:")) return line + " ";
    }
    return std::nullopt;
}

} // namespace

TEST(SecretBytesTests, keepsEveryByteZerosToo) {
    SecretBytes const secret{withNul};
    EXPECT_EQ(secret.size(), 4U);
    EXPECT_TRUE(std::ranges::equal(secret.bytes(), withNul));
}

TEST(SecretBytesTests, aDefaultOneIsEmpty) {
    EXPECT_EQ(SecretBytes().size(), 0U);
    EXPECT_EQ(SecretBytes(), SecretBytes(std::span<std::byte const>()));
}

TEST(SecretBytesTests, isEqualByContentAndLength) {
    SecretBytes const secret{withNul};
    EXPECT_EQ(secret, SecretBytes{withNul});
    EXPECT_NE(secret, SecretBytes{std::span(withNul).first(3)});
    EXPECT_NE(secret, SecretBytes::filledBy(4, [](auto bytes) { bytes[0] = std::byte{1}; }));
}

TEST(SecretBytesTests, isFilledInPlaceFromZeros) {
    auto const secret = SecretBytes::filledBy(3, [](auto bytes) { bytes[1] = std::byte{7}; });
    EXPECT_EQ(secret.bytes()[0], std::byte{0});
    EXPECT_EQ(secret.bytes()[1], std::byte{7});
    EXPECT_EQ(secret.bytes()[2], std::byte{0});
}

TEST(SecretBytesTests, aCopyOutlivesItsOriginal) {
    std::optional<SecretBytes> original{SecretBytes{withNul}};
    auto const copy = *original;
    original.reset();
    EXPECT_TRUE(std::ranges::equal(copy.bytes(), withNul));
}

TEST(SecretBytesTests, staysOutOfCoreDumps) {
    SecretBytes const secret{withNul};
    auto const flags = flagsOfMapping(secret.bytes().data());
    ASSERT_TRUE(flags.has_value());
    EXPECT_NE(flags->find(" dd "), std::string::npos) << *flags;
}
