#include "DoctorReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

// A home whose data lie on a small disk of their own, which only the programs of one script see.
class FullDiskJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "home" / "tea.ics", oneEvent);
        if (script("true").exitCode != 0)
            GTEST_SKIP() << "no file system can be mounted here (unshare --user --mount is not permitted)";
    }

    // Runs the commands with the small disk mounted, until one fails. `fill` leaves not a single block on it.
    ProgramResult script(std::string const& commands) const {
        auto const text =
            "mount -t tmpfs -o size=256k,mode=700 none \"$XDG_DATA_HOME\"\n"
            "fill() { dd if=/dev/zero of=\"$XDG_DATA_HOME/filler\" bs=4096 2>/dev/null || true; }\n"
            "quillora() { " QUILLORA_BUILD_DIR "/bin/quillora \"$@\"; }\n"
            "registry=\"$XDG_DATA_HOME/Quillora/CalendarProviders.RegistryProvider.realm\"\n"
            "mirror=\"$XDG_DATA_HOME/group.quillora/enabledCalendarAccounts.json\"\n" +
            commands;
        return run({.path = "/usr/bin/unshare",
                    .arguments = {"--user", "--map-root-user", "--mount", "/bin/sh", "-e", "-c", text},
                    .environment = home.environment,
                    .directory = home.folder().string(),
                    .patience = std::chrono::seconds(200)});
    }

    PrivateHome home;
};

TEST_F(FullDiskJourneys, aChangeThatFindsNoRoomLosesNothing) {
    auto const result = script(R"(
        quillora setup --yes --keychain file >/dev/null
        cp "$registry" "$HOME/before"
        fill
        quillora providers disable eventKit && exit 1
        cmp "$registry" "$HOME/before"
        cat "$mirror"; echo
        quillora providers list
        ls -A "$XDG_DATA_HOME/Quillora"
        rm "$XDG_DATA_HOME/filler"
        quillora providers disable eventKit
        cat "$mirror"; echo
        )");
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "quillora: the provider \"eventKit\" was not changed\n"
                             "the system could not carry it out: No space left on device\n");
    EXPECT_THAT(result.output, testing::StartsWith("[\"eventKit\"]\neventKit  Calendars on this computer"));
    EXPECT_THAT(result.output,
                HasSubstr("enabled\n.providers.lock\nCalendarProviders.RegistryProvider.realm\n"
                          "CalendarProviders.RegistryProvider.realm.lock\nCalendars\n"
                          "Keychain\nDisabled \"Calendars on this computer\"\n[]\n"));
}

TEST_F(FullDiskJourneys, aSetUpThatFindsNoRoomMakesNoHalfKey) {
    auto const result = script(R"(
        mkdir -m 700 "$XDG_DATA_HOME/Quillora" "$XDG_DATA_HOME/Quillora/Keychain" "$XDG_DATA_HOME/group.quillora"
        quillora access grant >/dev/null
        fill
        quillora setup --yes --keychain file && exit 1
        ls -A "$XDG_DATA_HOME/Quillora/Keychain"
        test ! -e "$registry"
        rm "$XDG_DATA_HOME/filler"
        quillora setup --yes --keychain file >/dev/null
        cat "$mirror"
        )");
    EXPECT_EQ(result.exitCode, 0) << result.errors << result.output;
    EXPECT_THAT(result.errors, HasSubstr("No space left on device"));
    EXPECT_EQ(result.output, R"(["eventKit"])");
}

TEST_F(FullDiskJourneys, theDoctorNamesTheFullDisk) {
    auto const result = script(R"(
        quillora setup --yes --keychain file >/dev/null
        fill
        quillora doctor --json
        )");
    auto const sick = DoctorReport::from(result);
    EXPECT_THAT(sick.broken(), ElementsAre("folder"));
    EXPECT_THAT(sick.worst("folder").text, HasSubstr("is full"));
    EXPECT_EQ(sick.worst("folder").mend, "df -h " + home.container().string() + ", and make room");
}

TEST_F(FullDiskJourneys, theDoctorNamesAlsoTheFullDiskOfAFolderThatIsToBeMade) {
    auto const sick = DoctorReport::from(script("fill; quillora doctor --json"));
    EXPECT_THAT(sick.worst("folder").text, HasSubstr("is full"));
    EXPECT_EQ(sick.worst("folder").mend, "df -h " + (home.folder() / "data").string() + ", and make room");
}

TEST_F(FullDiskJourneys, aHomeThatCannotBeWrittenIsReadAllTheSame) {
    auto const result = script(R"(
        quillora setup --yes --keychain file >/dev/null
        mount -o remount,ro,size=256k "$XDG_DATA_HOME"
        quillora providers list
        for word in disable enable remove; do
            quillora providers $word eventKit && exit 1
        done
        quillora providers edit eventKit --name "My calendars" && exit 1
        quillora setup
        quillora doctor --json >"$HOME/doctor.json" && exit 1
        printf token | quillora backend login --url https://h.example --token-fd 0 && exit 1
        cat "$mirror"
        )");
    EXPECT_EQ(result.exitCode, 0) << result.errors << result.output;
    EXPECT_THAT(result.output, testing::StartsWith("eventKit  Calendars on this computer"));
    EXPECT_THAT(result.output, HasSubstr("nothing was changed\n"));
    EXPECT_THAT(result.output, testing::EndsWith(R"(["eventKit"])"));
    EXPECT_THAT(result.errors,
                HasSubstr("quillora: the provider \"eventKit\" was not changed\n"
                          "the database can only be read; nothing was written: Read-only file system\n"));
    auto const report = home.contentOf(home.folder() / "doctor.json");
    EXPECT_THAT(report, HasSubstr("nothing can be written in " + (home.folder() / "data/Quillora").string() +
                                  ": Read-only file system"));
    // No right that the person could grant would help.
    EXPECT_THAT(report, testing::Not(HasSubstr("chmod")));
    EXPECT_THAT(report, HasSubstr("findmnt --target " + (home.folder() / "data/Quillora").string()));
    EXPECT_THAT(result.errors,
                HasSubstr("the token was not kept, and nothing was changed: the files that hold "
                          "your secrets could not be used (status -36)"));
}

TEST_F(FullDiskJourneys, aTokenThatFindsNoRoomIsNotKeptAndTheOldOneStays) {
    auto const result = script(R"(
        quillora setup --yes --keychain file >/dev/null
        printf old-token | quillora backend login --url https://h.example --token-fd 0 >/dev/null
        fill
        printf new-token | quillora backend login --url https://h.example --token-fd 0 && exit 1
        grep -l -r old-token "$XDG_DATA_HOME/Quillora/Keychain"
        grep -r new-token "$XDG_DATA_HOME/Quillora" && exit 1
        ls -A "$XDG_DATA_HOME/Quillora/Keychain" | wc -l
        )");
    EXPECT_EQ(result.exitCode, 0) << result.errors << result.output;
    EXPECT_THAT(result.errors, HasSubstr("the files that hold your secrets could not be used (status -36)"));
    EXPECT_THAT(result.output, testing::EndsWith("backend https%3A%2F%2Fh.example\n2\n"));
}

} // namespace
