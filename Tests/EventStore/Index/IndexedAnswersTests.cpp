#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/Index/IndexedRoot.h"
#include "Tests/EventStore/Index/RandomCalendars.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace Platform;

namespace {

using Lines = std::vector<std::string>;

constexpr double day = 86400;
constexpr double firstDay = 20423 * day; // 2025-12-01

std::string contentOf(std::filesystem::path const& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Long answers are told apart by the first line that differs.
void expectSame(Lines const& answer, Lines const& truth, char const* what) {
    auto const [left, right] = std::ranges::mismatch(answer, truth);
    EXPECT_TRUE(left == answer.end() && right == truth.end())
        << what << "\n answer: " << (left == answer.end() ? "ends" : *left)
        << "\n truth:  " << (right == truth.end() ? "ends" : *right);
}

// Windows of a day, of three weeks and of all time, from clocks at the ends of the earth.
void expectTruth(IndexedRoot const& root, std::string const& folder) {
    auto const subject = root.reader();
    auto const truth = root.whole(folder);
    for (auto const* const viewer : {"UTC", "Pacific/Kiritimati", "America/Adak", "Asia/Kathmandu"}) {
        for (int number = -3; number < 190; number += 16) {
            auto const from = firstDay + number * day;
            for (auto const length : {day, 21 * day}) {
                expectSame(root.answer(*subject, from, from + length, viewer),
                           truth.answer(from, from + length, viewer), viewer);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
    expectSame(root.answer(*subject, 0, 2e9), truth.answer(0, 2e9), "of all time");
}

} // namespace

class IndexedRandomAnswersTests : public testing::TestWithParam<std::uint64_t> {};

TEST_P(IndexedRandomAnswersTests, areThoseOfAllFilesRead) {
    IndexedRoot const root;
    RandomCalendars random(GetParam());
    for (auto const& file : random.files(40))
        root.write("work/" + file.name, file.content);
    expectTruth(root, "work"); // Makes the index,
    expectTruth(root, "work"); // and asks it.
}

INSTANTIATE_TEST_SUITE_P(Seeds, IndexedRandomAnswersTests, testing::Range<std::uint64_t>(1, 6));

TEST(IndexedAnswersTests, ofEverySampleAreThoseOfTheFileRead) {
    std::filesystem::path const samples(QUILLORA_SOURCE_DIR "/Tests/EventStore/ICalendar/Events");
    IndexedRoot const together;
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator(samples)) {
        together.write("work/" + entry.path().filename().string(), contentOf(entry.path()));
        ++count;
    }
    EXPECT_GT(count, 30);
    expectTruth(together, "work");
    expectTruth(together, "work");
}

TEST(IndexedAnswersTests, followEveryChangeOfRandomCalendars) {
    IndexedRoot const root;
    RandomCalendars random(77);
    auto files = random.files(40);
    for (auto const& file : files)
        root.write("work/" + file.name, file.content);
    auto const resident = root.reader();
    auto const from = firstDay + 60 * day;
    for (std::size_t round = 0; round < 12; ++round) {
        // A file changes, one comes and one goes; at times many.
        for (std::size_t change = 0; change < (round % 6 == 5 ? 20U : 1U); ++change) {
            root.write("work/" + files[(round * 7 + change) % files.size()].name, random.content());
            root.write("work/new-" + std::to_string(round * 100 + change) + ".ics", random.content());
            std::filesystem::remove(root / "work" / files[(round * 5 + 3 + change) % files.size()].name);
        }
        auto const truth = root.whole("work").answer(from, from + 21 * day);
        ASSERT_EQ(root.answer(*resident, from, from + 21 * day), truth) << "round " << round;
        ASSERT_EQ(root.answer(*root.reader(), from, from + 21 * day), truth) << "round " << round;
    }
}

TEST(IndexedAnswersTests, takeAWarmIndexAtItsWord) {
    IndexedRoot const root;
    for (int number = 0; number < 100; ++number)
        root.write("work/" + std::to_string(number) + ".ics",
                   smallFile({smallEvent(std::to_string(number), "A")}));
    auto const first = root.reader();
    EXPECT_EQ(root.titles(*first).size(), 100U);
    EXPECT_EQ(first->reads(), 100);
    auto const next = root.reader();
    EXPECT_EQ(root.titles(*next).size(), 100U);
    EXPECT_EQ(next->reads(), 0);
}

TEST(IndexedAnswersTests, findAnEventByItsIdentifierWhereverItLies) {
    IndexedRoot const root;
    RandomCalendars random(5);
    for (auto const& file : random.files(40))
        root.write("work/" + file.name, file.content);
    auto const first = root.reader();
    auto const second = root.reader();
    int found = 0;
    for (int number = 0; number < 120; ++number) {
        auto const identifier = "r1/work:uid-" + std::to_string(number);
        auto const one = first->event(identifier, Foundation::TimeZone::utc(), IndexedRoot::later());
        auto const other = second->event(identifier, Foundation::TimeZone::utc(), IndexedRoot::later());
        ASSERT_EQ(one.has_value(), other.has_value());
        if (!one) continue;
        ++found;
        EXPECT_EQ(one->startDate, other->startDate);
        EXPECT_EQ(one->sourceFile, other->sourceFile);
        EXPECT_EQ(one->sourceLine, other->sourceLine);
    }
    EXPECT_GT(found, 30);
}
