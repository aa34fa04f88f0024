#include "Platform/EventStore/Index/StoredIndex.h"

#include "Platform/EventStore/Index/IndexBuilder.h"
#include "Platform/EventStore/Index/IndexFolder.h"
#include "Platform/EventStore/Index/Mixing.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <utime.h>

using namespace Platform;

namespace {

constexpr std::int64_t day = 86400;

FileFacts factsWith(std::uint64_t uid, std::int64_t first, std::int64_t last) {
    return {.isCalendarOfItsOwn = false,
            .name = std::nullopt,
            .color = std::nullopt,
            .series = {{.uid = uid, .bounds = {.first = first, .last = last}, .parts = {}}},
            .zones = {}};
}

std::string nameOf(int number) {
    auto text = std::to_string(number);
    return std::string(6 - text.size(), '0') + text;
}

StoredIndex indexOf(std::vector<FileFacts> const& facts) {
    IndexBuilder builder;
    for (std::size_t number = 0; number < facts.size(); ++number)
        builder.addFile(nameOf(static_cast<int>(number)), number + 1, facts[number]);
    return StoredIndex(IndexFile::inMemory(builder.build(1, 0)));
}

std::set<std::uint32_t> filesTouching(StoredIndex& index, std::int64_t from, std::int64_t to) {
    std::set<std::uint32_t> files;
    for (auto const& series : index.touching(from, to))
        files.insert(series.file);
    return files;
}

void writeBytes(std::filesystem::path const& path, std::span<std::byte const> bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

} // namespace

TEST(StoredIndexTests, aWindowIsTouchedByWhatOverlapsIt) {
    auto index = indexOf({factsWith(1, 0, 3600), factsWith(2, 10 * day, 10 * day + 3600),
                          factsWith(3, -5000 * day, 9000 * day), factsWith(4, 9 * day, 20 * day)});
    EXPECT_EQ(filesTouching(index, 10 * day, 11 * day), (std::set<std::uint32_t>{1, 2, 3}));
    EXPECT_EQ(filesTouching(index, 0, 0), (std::set<std::uint32_t>{0, 2}));
    EXPECT_EQ(filesTouching(index, 3600, 3600), (std::set<std::uint32_t>{0, 2}));
    EXPECT_EQ(filesTouching(index, 3601, 3601), (std::set<std::uint32_t>{2}));
    EXPECT_EQ(filesTouching(index, 9001 * day, 9002 * day), std::set<std::uint32_t>{});
    EXPECT_EQ(filesTouching(index, -day, 8 * day), (std::set<std::uint32_t>{0, 2}));
}

TEST(StoredIndexTests, windowsOfRandomSeriesAreTouchedByWhatALookAtAllFinds) {
    std::mt19937_64 numbers(3);
    auto const below = [&](std::int64_t limit) {
        return static_cast<std::int64_t>(numbers() % static_cast<std::uint64_t>(limit));
    };
    std::vector<FileFacts> facts;
    for (int number = 0; number < 3000; ++number) {
        auto const first = below(4000 * day);
        auto const length = below(std::int64_t{1} << below(33));
        facts.push_back(factsWith(numbers(), first, number % 50 == 0 ? 3'000'000 * day : first + length));
    }
    auto index = indexOf(facts);
    for (int query = 0; query < 200; ++query) {
        auto const from = below(4200 * day) - 100 * day;
        auto const to = from + below(query % 2 == 0 ? day : 60 * day);
        std::set<std::uint32_t> expected;
        for (std::uint32_t place = 0; place < facts.size(); ++place) {
            if (facts[place].series[0].bounds.touch(from, to)) expected.insert(place);
        }
        ASSERT_EQ(filesTouching(index, from, to), expected) << query;
    }
}

TEST(StoredIndexTests, whatWasAddedComesBack) {
    IndexBuilder builder;
    FileFacts const facts{
        .isCalendarOfItsOwn = true,
        .name = "Büro",
        .color = std::nullopt,
        .series = {{.uid = 7, .bounds = {.first = 1, .last = 2}, .parts = {{10, 20, 3}, {90, 5, 8}}},
                   {.uid = 5, .bounds = {.first = 3, .last = 4}, .parts = {{40, 9, 6}}}},
        .zones = {{1, 2, 3}}};
    builder.addFile("a.ics", 11, facts);
    builder.addFile("b.ics", 0, factsWith(7, 5, 6));
    StoredIndex index(IndexFile::inMemory(builder.build(1, 99)));
    EXPECT_EQ(index.fileCount(), 2U);
    EXPECT_EQ(index.header().untrusted, 1U);
    EXPECT_EQ(index.header().writtenAt, 99);
    auto const record = index.fileAt(0);
    EXPECT_EQ(index.nameOf(record), "a.ics");
    EXPECT_EQ(record.stamp, 11U);
    EXPECT_NE(record.isCalendarOfItsOwn, 0);
    EXPECT_EQ(index.textOf(record).name, "Büro");
    EXPECT_EQ(index.textOf(record).color, std::nullopt);
    EXPECT_EQ(index.partsFrom(record.zones), facts.zones);
    auto const shared = index.withUID(7);
    ASSERT_EQ(shared.size(), 2U);
    EXPECT_EQ(index.partsFrom(shared[0].parts), facts.series[0].parts);
    EXPECT_EQ(shared[1].file, 1U);
    EXPECT_TRUE(index.partsFrom(shared[1].parts).empty());
    EXPECT_EQ(index.withUID(5).size(), 1U);
    EXPECT_TRUE(index.withUID(6).empty());
    for (auto const& series : index.touching(0, 9))
        EXPECT_EQ(series.isShared != 0, series.uid == 7);
}

TEST(StoredIndexTests, adoptedFilesKeepTheirFactsUnderTheirNewPlace) {
    auto former = indexOf({factsWith(1, 0, 1), factsWith(2, 2, 3), factsWith(3, 4, 5)});
    IndexBuilder builder;
    builder.adoptFile(former, 0);
    builder.addFile("000000a", 9, factsWith(9, 10, 11));
    builder.adoptFile(former, 2);
    builder.adoptSeries(former);
    StoredIndex index(IndexFile::inMemory(builder.build(1, 0)));
    EXPECT_EQ(index.fileCount(), 3U);
    EXPECT_EQ(filesTouching(index, 4, 5), (std::set<std::uint32_t>{2}));
    EXPECT_EQ(filesTouching(index, 2, 3), std::set<std::uint32_t>{});
    EXPECT_EQ(index.nameOf(index.fileAt(2)), "000002");
    EXPECT_EQ(index.withUID(3).at(0).file, 2U);
}

TEST(StoredIndexTests, theSumOfStampsTellsStatesApartInAnyOrder) {
    auto const sum = [](std::vector<std::pair<std::uint64_t, std::uint64_t>> const& files) {
        std::uint64_t total = 0;
        for (auto const& [name, stamp] : files)
            total += shareOfSum(name, stamp);
        return total;
    };
    EXPECT_EQ(sum({{1, 2}, {3, 4}}), sum({{3, 4}, {1, 2}}));
    EXPECT_NE(sum({{1, 2}, {3, 4}}), sum({{1, 4}, {3, 2}}));
    EXPECT_NE(sum({{1, 2}, {3, 4}}), sum({{1, 2}, {3, 5}}));
    EXPECT_NE(stampOfFile(1, 2, 3, 4), stampOfFile(1, 2, 4, 3));
    EXPECT_NE(stampOfFile(1, 2, 3, 4), stampOfFile(2, 2, 3, 4));
}

// Whatever became of the file, each thing that it yields is what was written.
TEST(StoredIndexTests, everyFlippedBitIsFoundOrDoesNotMatter) {
    TemporaryFolder const folder;
    IndexBuilder builder;
    constexpr int files = 40;
    for (int number = 0; number < files; ++number)
        builder.addFile(nameOf(number), static_cast<std::uint64_t>(number) + 1,
                        factsWith(static_cast<std::uint64_t>(number % 30), number * day, number * day + 60));
    auto const image = builder.build(1, 0);
    auto const path = folder / "index";
    int refused = 0;
    for (std::size_t bit = 0; bit < image.size() * 8; bit += 3) {
        auto damaged = image;
        damaged[bit / 8] ^= std::byte{1} << (bit % 8);
        writeBytes(path, damaged);
        auto file = IndexFile::open(path, 1);
        if (!file) {
            ++refused;
            continue;
        }
        StoredIndex index(*std::move(file));
        try {
            EXPECT_EQ(filesTouching(index, 5 * day, 6 * day), (std::set<std::uint32_t>{5, 6})) << bit;
            EXPECT_EQ(index.withUID(2).size(), 2U) << bit;
            EXPECT_EQ(index.nameOf(index.fileAt(7)), "000007") << bit;
            ADD_FAILURE() << "bit " << bit << " was not found";
        } catch (IndexDamaged const&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 1000);
}

TEST(StoredIndexTests, aFileCutShortOrLongIsRefused) {
    TemporaryFolder const folder;
    IndexBuilder builder;
    for (int number = 0; number < 300; ++number)
        builder.addFile(nameOf(number), 1, factsWith(1, 0, 1));
    auto const image = builder.build(1, 0);
    auto const path = folder / "index";
    for (std::size_t length = 0; length < image.size(); length += 37) {
        writeBytes(path, std::span(image).first(length));
        EXPECT_FALSE(IndexFile::open(path, 1).has_value()) << length;
    }
    auto longer = image;
    longer.push_back(std::byte{0});
    writeBytes(path, longer);
    EXPECT_FALSE(IndexFile::open(path, 1).has_value());
    writeBytes(path, image);
    EXPECT_TRUE(IndexFile::open(path, 1).has_value());
    EXPECT_FALSE(IndexFile::open(path, 2).has_value()) << "the index of another folder";
    EXPECT_FALSE(IndexFile::open(folder / "none", 1).has_value());
    EXPECT_FALSE(IndexFile::open(folder.path(), 1).has_value());
}

TEST(StoredIndexTests, aFileCutShortWhileItIsReadIsFound) {
    TemporaryFolder const folder;
    IndexBuilder builder;
    for (int number = 0; number < 3000; ++number)
        builder.addFile(nameOf(number), 1, factsWith(1, 0, 1));
    auto const path = folder / "index";
    ASSERT_FALSE(writeIndex(path, builder.build(1, 0)));
    auto file = IndexFile::open(path, 1);
    ASSERT_TRUE(file.has_value());
    StoredIndex index(*std::move(file));
    EXPECT_EQ(index.nameOf(index.fileAt(0)), "000000");
    std::filesystem::resize_file(path, 10'000);
    EXPECT_EQ(index.nameOf(index.fileAt(0)), "000000");
    EXPECT_THROW(static_cast<void>(index.seriesAt(2999)), IndexDamaged);
}

TEST(IndexFolderTests, writingMakesTheFolderForItsOwnerAlone) {
    TemporaryFolder const folder;
    auto const file = IndexFolder::fileFor(folder / "cache/quillora/calendars", "/home/ann/calendars");
    auto const image = indexOf({}).header();
    ASSERT_FALSE(IndexFolder::write(file, std::as_bytes(std::span(&image, 1)), 0));
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat((folder / "cache/quillora").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
}

TEST(IndexFolderTests, whatNobodyUsedForTwoMonthsIsRemoved) {
    TemporaryFolder const folder;
    constexpr std::int64_t now = 4'000'000'000;
    auto const aged = [&](char const* name, std::int64_t days) {
        auto const path = folder.write(name, "x");
        utimbuf const times{.actime = now - days * day, .modtime = now - days * day};
        EXPECT_EQ(::utime(path.c_str(), &times), 0);
    };
    aged("used.index", 50);
    aged("forgotten.index", 70);
    aged("being-written.tmp", 0);
    aged("left.tmp", 3);
    aged("foreign", 700);
    IndexFolder::sweep(folder.path(), now * 1'000'000'000);
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder.path()))
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"used.index", "being-written.tmp", "foreign"}));
}
