#include "Tests/EventStore/Index/IndexedRoot.h"
#include "Tests/EventStore/Index/RandomCalendars.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

using namespace Platform;

namespace {

constexpr double day = 86400;
constexpr double from = (20423 + 60) * day;

std::string contentOf(std::filesystem::path const& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void replace(std::filesystem::path const& path, std::string const& content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

// A folder with an index, and the answer that every state of the index must lead to.
class IndexDamageTests : public testing::Test {
protected:
    IndexDamageTests() {
        RandomCalendars random(11);
        for (auto const& file : random.files(25))
            root.write("work/" + file.name, file.content);
        truth = root.whole("work").answer(from, from + 21 * day);
        EXPECT_EQ(root.answer(*root.reader(), from, from + 21 * day), truth);
        index = root.onlyIndex();
        whole = contentOf(index);
    }

    void expectTruth(std::string const& what) const {
        ASSERT_EQ(root.answer(*root.reader(), from, from + 21 * day), truth) << what;
    }

    IndexedRoot root;
    std::vector<std::string> truth;
    std::filesystem::path index;
    std::string whole;
};

} // namespace

TEST_F(IndexDamageTests, cutShortAnywhereItGivesTheSameAnswer) {
    for (std::size_t length = 0; length < whole.size(); length += whole.size() / 60 + 1) {
        replace(index, whole.substr(0, length));
        expectTruth("length " + std::to_string(length));
    }
    EXPECT_EQ(contentOf(index).size(), whole.size()) << "it was not made anew";
}

TEST_F(IndexDamageTests, withAnyBitFlippedItGivesTheSameAnswer) {
    std::mt19937_64 numbers(4);
    for (int flip = 0; flip < 150; ++flip) {
        auto damaged = whole;
        auto const bit = numbers() % (whole.size() * 8);
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        replace(index, damaged);
        expectTruth("bit " + std::to_string(bit));
    }
}

TEST_F(IndexDamageTests, partlyOverwrittenItGivesTheSameAnswer) {
    std::mt19937_64 numbers(5);
    for (int round = 0; round < 40; ++round) {
        auto damaged = whole;
        auto const begin = numbers() % whole.size();
        auto const length = std::min<std::size_t>(numbers() % 9000, whole.size() - begin);
        for (std::size_t place = begin; place < begin + length; ++place)
            damaged[place] = round % 2 == 0 ? '\0' : static_cast<char>(numbers());
        replace(index, damaged);
        expectTruth("round " + std::to_string(round));
    }
}

TEST_F(IndexDamageTests, foreignContentGivesTheSameAnswer) {
    RandomCalendars random(12);
    IndexedRoot const other;
    for (auto const& file : random.files(25))
        other.write("work/" + file.name, file.content);
    static_cast<void>(other.answer(*other.reader(), from, from + day));
    for (auto const& content : {contentOf(other.onlyIndex()), std::string("SQLite format 3"),
                                std::string(100'000, 'x'), std::string()}) {
        replace(index, content);
        expectTruth("foreign content of " + std::to_string(content.size()));
    }
}

TEST_F(IndexDamageTests, damagedUnderAResidentReaderItGivesTheSameAnswer) {
    auto const resident = root.reader();
    ASSERT_EQ(root.answer(*resident, from, from + day), root.whole("work").answer(from, from + day));
    replace(index, std::string(whole.size(), '\0'));
    EXPECT_EQ(root.answer(*resident, 0, 2e9), root.whole("work").answer(0, 2e9));
    std::filesystem::resize_file(index, 100);
    EXPECT_EQ(root.answer(*resident, from, from + 21 * day), truth);
}
