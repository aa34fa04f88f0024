#include "Platform/Defaults/FileUserDefaults.h"

#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileLocks.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/Platform/OrdinaryUser.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Platform;
using StringArray = UserDefaults::StringArray;

class FileUserDefaultsTests : public testing::Test {
protected:
    [[nodiscard]] static std::string content(std::filesystem::path const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    TemporaryFolder home;
    std::filesystem::path const folder = home.path() / "config" / "quillora";
    std::filesystem::path const file = folder / "defaults.json";
    FileUserDefaults defaults{folder, std::make_shared<PosixFileManager>(Foundation::Environment()),
                              std::make_shared<PosixFileLocks>()};
};

TEST_F(FileUserDefaultsTests, readingMakesNothing) {
    EXPECT_EQ(defaults.string("meetAlarmMode"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(home.path() / "config"));
}

TEST_F(FileUserDefaultsTests, theFileIsOneObjectInTheOrderOfTheFirstChanges) {
    EXPECT_EQ(defaults.setString("meetAlarmMode", "voice"), std::error_code());
    EXPECT_EQ(defaults.setStringArray("alarmEnabledCalendarIdentifiers", {"k3fa/work"}), std::error_code());
    EXPECT_EQ(defaults.setData("key", std::string("\0\1\2", 3)), std::error_code());
    EXPECT_EQ(defaults.setString("meetAlarmMode", "hero"), std::error_code());
    EXPECT_EQ(
        content(file),
        R"({"meetAlarmMode":"hero","alarmEnabledCalendarIdentifiers":["k3fa\/work"],"key":{"data":"AAEC"}})");
}

TEST_F(FileUserDefaultsTests, aFileThatIsTooLargeReadsAsAnEmptyOneAndIsNeverReplaced) {
    EXPECT_EQ(defaults.setString("meetAlarmMode", "hero"), std::error_code());
    std::filesystem::resize_file(file, largestPreferenceFile + 1);
    EXPECT_EQ(defaults.string("meetAlarmMode"), std::nullopt);
    EXPECT_EQ(defaults.setString("meetAlarmMode", "funk"), std::errc::file_too_large);
    EXPECT_EQ(std::filesystem::file_size(file), largestPreferenceFile + 1);
}

TEST_F(FileUserDefaultsTests, whatCouldNotBeReadAgainIsNotWritten) {
    EXPECT_EQ(defaults.setString("meetAlarmMode", "hero"), std::error_code());
    auto const before = content(file);
    EXPECT_EQ(defaults.setString("long", std::string(largestPreferenceFile, 'x')), std::errc::file_too_large);
    EXPECT_EQ(content(file), before);
}

TEST_F(FileUserDefaultsTests, folderAndFileAreTheOwnersAlone) {
    EXPECT_EQ(defaults.setString("meetAlarmMode", "hero"), std::error_code());
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
    EXPECT_EQ(std::filesystem::status(file).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(FileUserDefaultsTests, valuesOfOtherKindsReadAsAbsentAndAreKept) {
    home.place(
        "config/quillora/defaults.json",
        R"({"number":3.50,"flag":true,"none":null,"mixed":["a",1],"odd":{"data":"Zg"},"deep":{"a":[]}})");
    for (auto const* key : {"number", "flag", "none", "mixed", "odd", "deep"}) {
        EXPECT_EQ(defaults.string(key), std::nullopt) << key;
        EXPECT_EQ(defaults.stringArray(key), std::nullopt) << key;
        EXPECT_EQ(defaults.data(key), std::nullopt) << key;
    }
    EXPECT_EQ(defaults.setString("meetAlarmMode", "hero"), std::error_code());
    EXPECT_EQ(content(file), R"({"number":3.50,"flag":true,"none":null,"mixed":["a",1],"odd":{"data":"Zg"},)"
                             R"("deep":{"a":[]},"meetAlarmMode":"hero"})");
}

TEST_F(FileUserDefaultsTests, ofEqualKeysTheFirstIsReadAndAChangeLeavesOne) {
    home.place("config/quillora/defaults.json", R"({"a":"1","b":"2","a":"3"})");
    EXPECT_EQ(defaults.string("a"), "1");
    EXPECT_EQ(defaults.setString("a", "4"), std::error_code());
    EXPECT_EQ(content(file), R"({"a":"4","b":"2"})");
}

TEST_F(FileUserDefaultsTests, aDamagedFileReadsAsEmptyAndIsSetAsideByTheFirstChange) {
    for (auto const* damage : {"", "not JSON", R"({"a":"1")", R"(["a"])", "{\"a\":\"\xFF\"}"}) {
        TemporaryFolder other;
        FileUserDefaults settings(other.path(), std::make_shared<PosixFileManager>(Foundation::Environment()),
                                  std::make_shared<PosixFileLocks>());
        other.place("defaults.json", damage);
        EXPECT_EQ(settings.string("a"), std::nullopt) << damage;
        EXPECT_EQ(content(other.path() / "defaults.json"), damage);
        EXPECT_EQ(settings.setString("a", "2"), std::error_code()) << damage;
        EXPECT_EQ(settings.string("a"), "2");
        EXPECT_EQ(content(other.path() / "defaults.json.damaged"), damage);
    }
}

TEST_F(FileUserDefaultsTests, whatWasSetAsideBeforeStays) {
    home.place("config/quillora/defaults.json", "first");
    EXPECT_EQ(defaults.setString("a", "1"), std::error_code());
    home.place("config/quillora/defaults.json", "second");
    EXPECT_EQ(defaults.setString("a", "2"), std::error_code());
    EXPECT_EQ(content(folder / "defaults.json.damaged"), "first");
    EXPECT_EQ(content(folder / "defaults.json.damaged-2"), "second");
}

TEST_F(FileUserDefaultsTests, aDamagedFileThatCannotBeSetAsideStays) {
    auto const files = std::make_shared<InMemoryFileManager>();
    FileUserDefaults settings(home.path(), files, std::make_shared<PosixFileLocks>());
    files->place(home.path() / "defaults.json", "damaged");
    files->failsAfter(0);
    EXPECT_EQ(settings.setString("a", "1"), std::errc::no_space_on_device);
    EXPECT_EQ(files->content(home.path() / "defaults.json"), "damaged");
}

TEST_F(FileUserDefaultsTests, aFileThatMayNotBeReadReadsAsEmptyAndIsNeverReplaced) {
    home.place("config/quillora/defaults.json", R"({"a":"1"})");
    std::filesystem::permissions(home.path(), std::filesystem::perms::all);
    std::filesystem::permissions(home.path() / "config", std::filesystem::perms::all);
    {
        OrdinaryUser const user(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    }
    std::filesystem::permissions(file, std::filesystem::perms::none);
    {
        OrdinaryUser const user(folder);
        EXPECT_EQ(defaults.string("a"), std::nullopt);
        EXPECT_EQ(defaults.setString("a", "2"), std::errc::permission_denied);
        EXPECT_EQ(defaults.removeObject("a"), std::errc::permission_denied);
    }
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    EXPECT_EQ(content(file), R"({"a":"1"})");
}

TEST_F(FileUserDefaultsTests, aChangeThatChangesNothingWritesNothing) {
    home.place("config/quillora/defaults.json", R"( {"a":"1", "l":["b"]} )");
    EXPECT_EQ(defaults.setString("a", "1"), std::error_code());
    EXPECT_EQ(defaults.removeObject("other"), std::error_code());
    EXPECT_EQ(defaults.updateStringArray("l", [](StringArray list) { return list; }), std::error_code());
    EXPECT_EQ(content(file), R"( {"a":"1", "l":["b"]} )");
}

TEST_F(FileUserDefaultsTests, whatAnotherObjectChangesIsSeenAtOnce) {
    FileUserDefaults other(folder, std::make_shared<PosixFileManager>(Foundation::Environment()),
                           std::make_shared<PosixFileLocks>());
    EXPECT_EQ(defaults.setString("a", "1"), std::error_code());
    EXPECT_EQ(other.string("a"), "1");
    EXPECT_EQ(other.removeObject("a"), std::error_code());
    EXPECT_EQ(defaults.string("a"), std::nullopt);
}

// A process that adds its names to one list and a key of its own for each; yields its exit code later.
pid_t startInserting(FileUserDefaults& defaults, std::string const& prefix, int count) {
    pid_t const child = ::fork();
    if (child != 0) return child;
    for (int number = 0; number < count; ++number) {
        auto const name = prefix + std::to_string(number);
        auto const added = defaults.updateStringArray("shared", [&](StringArray list) {
            list.push_back(name);
            return list;
        });
        if (added || defaults.setString(name, prefix)) ::_exit(1);
    }
    ::_exit(0);
}

TEST_F(FileUserDefaultsTests, processesThatChangeAtOnceLoseNothing) {
    constexpr int count = 50;
    std::array const children{startInserting(defaults, "x", count), startInserting(defaults, "y", count)};
    for (pid_t const child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    EXPECT_EQ(defaults.stringArray("shared")->size(), 2U * count);
    for (int number = 0; number < count; ++number) {
        EXPECT_EQ(defaults.string("x" + std::to_string(number)), "x");
        EXPECT_EQ(defaults.string("y" + std::to_string(number)), "y");
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "defaults.json.damaged"));
}

} // namespace
