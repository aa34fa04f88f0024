#include "Platform/ObjectDatabase/MemoryDatabase.h"
#include "Platform/ObjectDatabase/Seal.h"
#include "Tests/ObjectDatabase/DatabaseFixtures.h"
#include "Tests/Platform/FaultScale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string_view>

namespace {

using namespace DatabaseFixtures;
using Kind = Platform::ObjectDatabaseError::Kind;
namespace Seal = Platform::Seal;
using Bytes = std::vector<std::byte>;

Bytes bytesOf(std::string_view text) {
    auto const bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

Seal::Freshness foretold() {
    Seal::Freshness made{};
    for (std::size_t index = 0; index < made.salt.size(); ++index)
        made.salt[index] = std::byte(100 + index);
    for (std::size_t index = 0; index < made.nonce.size(); ++index)
        made.nonce[index] = std::byte(200 + index);
    return made;
}

std::string hex(std::span<std::byte const> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (auto const byte : bytes) {
        text += digits[std::to_integer<std::size_t>(byte >> 4)];
        text += digits[std::to_integer<std::size_t>(byte & std::byte{15})];
    }
    return text;
}

/// The file of a database with so many objects.
Bytes smallDatabase(int people = 1) {
    Platform::MemoryDatabase database(1);
    database.begin();
    for (int count = 0; count < people; ++count)
        database.add(person(std::to_string(count), "Ada"));
    database.commit();
    return Seal::seal(database.image(), key(), foretold());
}

} // namespace

TEST(SealTests, writesTheFormThatOthersCanRead) {
    auto const file = Seal::seal(bytesOf("image"), key(), foretold());
    EXPECT_EQ(hex(std::span(file).first(20)), "7175696c6c6f7261207365616c65640a01000000");
    EXPECT_EQ(hex(std::span(file).subspan(20, 4)), "64656667");
    EXPECT_EQ(hex(std::span(file).subspan(52, 4)), "c8c9cacb");
    // Worked out with another implementation of HKDF and AES-GCM.
    EXPECT_EQ(hex(std::span(file).subspan(64)), "af323e46c27c436c77052724fd2850c518a2023630");
}

TEST(SealTests, yieldsTheImageThatWasSealed) {
    for (auto const* image : {"", "x", "a longer image, longer than one block of the cipher"}) {
        EXPECT_EQ(Seal::open(Seal::seal(bytesOf(image), key(), foretold()), key()), bytesOf(image));
    }
}

TEST(SealTests, isAnotherFileEachTime) {
    auto const first = Seal::seal(bytesOf("image"), key(), Seal::freshness());
    auto const second = Seal::seal(bytesOf("image"), key(), Seal::freshness());
    // The salt, the nonce and the text: none of them is used twice.
    EXPECT_FALSE(std::equal(first.begin() + 20, first.begin() + 52, second.begin() + 20));
    EXPECT_FALSE(std::equal(first.begin() + 52, first.begin() + 64, second.begin() + 52));
    EXPECT_FALSE(std::equal(first.begin() + 64, first.end(), second.begin() + 64));
}

TEST(SealTests, findsEveryTruncation) {
    auto const file = smallDatabase();
    for (std::size_t length = 0; length < file.size(); ++length) {
        auto const opened = Seal::open(std::span(file).first(length), key());
        ASSERT_FALSE(opened.has_value()) << length;
        ASSERT_EQ(opened.error(), Kind::wrongKeyOrDamaged) << length;
    }
}

TEST(SealTests, findsEveryAddedByte) {
    auto file = smallDatabase();
    for (int value = 0; value < 256; ++value) {
        file.push_back(std::byte(value));
        EXPECT_FALSE(Seal::open(file, key()).has_value()) << value;
        file.pop_back();
    }
}

TEST(SealTests, findsEveryChangedByte) {
    auto file = smallDatabase();
    for (std::size_t place = 0; place < file.size(); ++place) {
        file[place] ^= std::byte{0xFF};
        ASSERT_FALSE(Seal::open(file, key()).has_value()) << place;
        file[place] ^= std::byte{0xFF};
    }
    EXPECT_TRUE(Seal::open(file, key()).has_value());
}

TEST(SealTests, findsEveryFlippedBit) {
    // In full these are more than a hundred thousand bits.
    auto file = smallDatabase(FaultScale::of(80));
    std::size_t const step = FaultScale::isFull() ? 1 : 9;
    ASSERT_GT(file.size() * 8 / step, FaultScale::isFull() ? 100'000U : 4'000U);
    for (std::size_t bit = 0; bit < file.size() * 8; bit += step) {
        auto const mask = std::byte{1} << (bit % 8);
        file[bit / 8] ^= mask;
        ASSERT_FALSE(Seal::open(file, key()).has_value()) << bit;
        file[bit / 8] ^= mask;
    }
    EXPECT_TRUE(Seal::open(file, key()).has_value());
}

TEST(SealTests, everyByteOfTheKeyCounts) {
    auto const file = smallDatabase();
    for (std::size_t place = 0; place < 64; ++place) {
        auto const other = Foundation::SecretBytes::filledBy(64, [&](auto bytes) {
            std::ranges::copy(key().bytes(), bytes.begin());
            bytes[place] ^= std::byte{1};
        });
        auto const opened = Seal::open(file, other);
        ASSERT_FALSE(opened.has_value()) << place;
        EXPECT_EQ(opened.error(), Kind::wrongKeyOrDamaged) << place;
    }
}

TEST(SealTests, tellsAForeignFileFromADamagedOne) {
    EXPECT_EQ(Seal::open(bytesOf("SQLite format 3"), key()).error(), Kind::foreignFile);
    EXPECT_EQ(Seal::open(bytesOf("{}"), key()).error(), Kind::foreignFile);
    EXPECT_EQ(Seal::open(bytesOf("quillora"), key()).error(), Kind::wrongKeyOrDamaged);
    auto later = smallDatabase();
    later[16] = std::byte{2};
    EXPECT_EQ(Seal::open(later, key()).error(), Kind::foreignFile);
}
