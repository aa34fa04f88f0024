#include "Platform/Files/PreferenceGuard.h"

#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Platform::GuardedPreference;

class PreferenceGuardTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::vector<std::string> told;
    Platform::PreferenceGuard guard{files,
                                    {{.fileName = "list.json",
                                      .form = GuardedPreference::Form::listOfTexts,
                                      .keeper = GuardedPreference::Keeper::guard},
                                     {.fileName = "settings.json",
                                      .form = GuardedPreference::Form::object,
                                      .keeper = GuardedPreference::Keeper::itsStore}},
                                    [this](std::string const& message) { told.push_back(message); }};

    void read(std::string const& path) const { (void)guard.contents(path, Platform::largestPreferenceFile); }
};

TEST_F(PreferenceGuardTests, wholeMissingAndOtherFilesAreReadInSilence) {
    files->place("/data/list.json", R"(["a"])");
    files->place("/data/other.json", "[");
    for (auto const* const path : {"/data/list.json", "/data/settings.json", "/data/other.json"})
        read(path);
    EXPECT_EQ(told, std::vector<std::string>());
    EXPECT_EQ(guard.contents("/data/list.json", Platform::largestPreferenceFile), R"(["a"])");
}

TEST_F(PreferenceGuardTests, damageIsToldOnceForEachFileAndTheContentStays) {
    files->place("/data/list.json", R"(["a)");
    files->place("/data/settings.json", "[]");
    for (auto const* const path : {"/data/list.json", "/data/list.json", "/data/settings.json"})
        read(path);
    EXPECT_EQ(told, (std::vector<std::string>{
                        "/data/list.json: the file is damaged, so nothing in it counts; the next change "
                        "keeps a copy of it and starts anew",
                        "/data/settings.json: the file is damaged, so nothing in it counts; the next change "
                        "keeps a copy of it and starts anew"}));
    EXPECT_EQ(guard.contents("/data/list.json", Platform::largestPreferenceFile), R"(["a)");
}

TEST_F(PreferenceGuardTests, aClosedFileIsToldWithTheReason) {
    files->place("/data/list.json", "[]");
    files->refusesReads();
    read("/data/list.json");
    EXPECT_EQ(told, std::vector<std::string>{"/data/list.json: the file could not be read (Permission "
                                             "denied), so nothing in it counts"});
}

TEST_F(PreferenceGuardTests, aCopyOfADamagedFileIsKeptBeforeItIsWrittenOver) {
    files->place("/data/list.json", "one");
    EXPECT_EQ(guard.writeAtomically("/data/list.json", R"(["a"])"), std::error_code());
    EXPECT_EQ(files->content("/data/list.json"), R"(["a"])");
    EXPECT_EQ(files->content("/data/list.json.damaged"), "one");
    EXPECT_EQ(guard.writeAtomically("/data/list.json", "[]"), std::error_code());
    files->place("/data/list.json", "two");
    EXPECT_EQ(guard.writeAtomically("/data/list.json", "[]"), std::error_code());
    EXPECT_EQ(files->content("/data/list.json.damaged"), "one");
    EXPECT_EQ(files->content("/data/list.json.damaged-2"), "two");
}

TEST_F(PreferenceGuardTests, whereNoCopyCanBeMadeNothingIsWrittenOver) {
    files->place("/data/list.json", "one");
    files->failsAfter(0);
    EXPECT_EQ(guard.writeAtomically("/data/list.json", "[]"), std::errc::no_space_on_device);
    EXPECT_EQ(files->content("/data/list.json"), "one");
}

TEST_F(PreferenceGuardTests, aStoreThatKeepsItsOwnCopiesIsLeftToThem) {
    files->place("/data/settings.json", "one");
    EXPECT_EQ(guard.writeAtomically("/data/settings.json", "{}"), std::error_code());
    EXPECT_EQ(files->content("/data/settings.json.damaged"), std::nullopt);
}

} // namespace
