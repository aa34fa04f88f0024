#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr auto question = "[yes/no] ";

// The program below a prefix with a blank in its name, and a link to it from elsewhere.
class FrontJourneys : public testing::Test {
protected:
    FrontJourneys() {
        home.setUp();
        copyProgram(prefix);
        fs::create_directory_symlink(QUILLORA_BUILD_DIR "/share", prefix / "share");
        fs::create_directories(home.folder() / "links");
        fs::create_symlink(prefix / "bin" / "quillora", home.folder() / "links" / "quillora");
    }

    // Started under any name, from any folder.
    [[nodiscard]] ProgramResult started(std::string path, std::vector<std::string> words,
                                        fs::path const& directory = "/") const {
        return run({.path = std::move(path),
                    .arguments = std::move(words),
                    .environment = home.environment,
                    .directory = directory.string()});
    }
    [[nodiscard]] ProgramResult installed(std::vector<std::string> words) const {
        return started((prefix / "bin" / "quillora").string(), std::move(words));
    }

    void removeWhole() const { fs::remove_all(prefix / "libexec"); }

    [[nodiscard]] std::string missing() const {
        return "quillora: a part of Quillora is missing: " +
               (prefix / "libexec" / "quillora" / "quillora-companion").string() +
               " cannot be started (No such file or directory); install Quillora again\n";
    }

    PrivateHome home;
    fs::path prefix = home.folder() / "a prefix" / "usr";
};

TEST_F(FrontJourneys, everyCommandWorksHoweverTheProgramIsStarted) {
    auto const expected = home.outputOf({"sources", "list"});
    EXPECT_THAT(expected, HasSubstr("Cal"));
    struct Way {
        std::string path;
        fs::path directory;
    };
    for (auto const& [path, directory] : {
             Way{prefix / "bin" / "quillora", "/"},
             Way{"bin/quillora", prefix},
             Way{"./quillora", prefix / "bin"},
             Way{"../usr/bin/quillora", prefix},
             Way{home.folder() / "links" / "quillora", prefix / "bin"},
             Way{"links/quillora", home.folder()},
         }) {
        auto const result = started(path, {"sources", "list"}, directory);
        EXPECT_EQ(result.exitCode, 0) << path;
        EXPECT_EQ(result.output, expected) << path;
        EXPECT_EQ(result.errors, "") << path;
        EXPECT_EQ(started(path, {"day", "--day", "2026-03-11"}, directory).exitCode, 0) << path;
    }
}

TEST_F(FrontJourneys, itIsFoundThroughThePath) {
    home.environment["PATH"] = (home.folder() / "links").string() + ":/usr/bin:/bin";
    auto const result = started("/bin/sh", {"-c", "quillora sources list"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output, home.outputOf({"sources", "list"}));
}

TEST_F(FrontJourneys, theWholeCompanionSpeaksThePersonsLanguage) {
    home.environment["LANG"] = "es_ES.UTF-8";
    EXPECT_THAT(installed({"--help"}).output, HasSubstr("Uso"));
}

TEST_F(FrontJourneys, aRelativeFileIsMeantFromWhereThePersonStands) {
    fs::create_directories(home.folder() / "drawn");
    auto const result =
        started((prefix / "bin" / "quillora").string(), {"day", "--svg", "day.svg"}, home.folder() / "drawn");
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(home.contentOf(home.folder() / "drawn" / "day.svg"), HasSubstr("<svg"));
}

TEST_F(FrontJourneys, aQuestionIsAskedAndAnsweredUnderTheNameThatWasTyped) {
    (void)home.outputOf({"access", "reset"});
    auto const result = run({.path = "bin/quillora",
                             .arguments = {"access", "request"},
                             .environment = home.environment,
                             .directory = prefix.string(),
                             .input = "y\n",
                             .inputAfter = question,
                             .output = ProgramRun::Output::terminal});
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_THAT(result.commandLine, StartsWith(std::string("bin/quillora\0access\0request\0", 28)));
    EXPECT_THAT(home.outputOf({"access", "status"}), StartsWith("Calendar access: granted"));
}

TEST_F(FrontJourneys, inputGoesToTheCommand) {
    auto const result = run({.path = (prefix / "bin" / "quillora").string(),
                             .arguments = {"html-line"},
                             .environment = home.environment,
                             .input = "<p>Bring <b>cake</b></p>"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.output, "Bring cake\n");
}

TEST_F(FrontJourneys, exitCodesPassThrough) {
    EXPECT_EQ(installed({"sources", "list"}).exitCode, 0);
    home.write(home.folder() / "none.ics", "no calendar");
    auto const unreadable = installed(
        {"occurrences", (home.folder() / "none.ics").string(), "--from", "2026-03-01", "--to", "2026-03-02"});
    EXPECT_EQ(unreadable.exitCode, 1) << unreadable.errors;
    EXPECT_EQ(installed({"sources", "remove"}).exitCode, 2);
    auto const unknown = installed({"day", "--frob"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.errors, "quillora: there is no option \"--frob\"; see \"quillora day --help\"\n");
}

TEST_F(FrontJourneys, signalsPassThrough) {
    (void)home.outputOf({"access", "reset"});
    auto const interrupted = run({.path = (prefix / "bin" / "quillora").string(),
                                  .arguments = {"access", "request"},
                                  .environment = home.environment,
                                  .input = "\x03",
                                  .inputAfter = question,
                                  .output = ProgramRun::Output::terminal});
    EXPECT_EQ(interrupted.exitCode, 130) << interrupted.output;
}

TEST_F(FrontJourneys, aWholeCompanionThatDiesIsSeenToDie) {
    fs::remove(prefix / "share");
    auto const result = installed({"day", "--svg", "-"});
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_THAT(result.errors, HasSubstr("unable to find bundle named"));
}

TEST_F(FrontJourneys, aReaderWhoGoesAwayIsToldOf) {
    auto const result = run({.path = (prefix / "bin" / "quillora").string(),
                             .arguments = {"--help"},
                             .environment = home.environment,
                             .output = ProgramRun::Output::readerGone});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("Broken pipe"));
}

TEST_F(FrontJourneys, whereTheWholeCompanionIsMissingThatIsSaid) {
    removeWhole();
    for (auto const& words : {std::vector<std::string>{"sources", "list"},
                              {"--help"},
                              {"day", "--frob"},
                              {"day", "--png", "day.png"},
                              {}}) {
        auto const result = installed(words);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, missing());
    }
    home.environment["LANG"] = "es_ES.UTF-8";
    EXPECT_THAT(installed({"sources", "list"}).errors, StartsWith("quillora: falta una parte de Quillora: "));
}

TEST_F(FrontJourneys, theQuickCommandsNeedNothingElse) {
    removeWhole();
    std::string const moment = "2026-03-11T08:00";
    for (auto const& words : {std::vector<std::string>{"day", "--at", moment},
                              {"day", "--json", "--at", moment},
                              {"day", "--waybar", "--at", moment}}) {
        auto const result = installed(words);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(result.output, home.outputOf(words));
        EXPECT_EQ(result.errors, "");
    }
    for (auto const* word : {"next", "previous", "today"}) {
        auto const result = installed({word});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_NE(result.output, "");
    }
}

} // namespace
