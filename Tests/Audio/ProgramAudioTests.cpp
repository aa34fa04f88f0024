#include "Platform/Audio/ProgramSoundPlayer.h"
#include "Platform/Audio/SpeechDispatcherSynthesizer.h"
#include "Platform/Processes/ChildProgram.h"

#include "Tests/Audio/StandInProgram.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Platform;
using std::chrono_literals::operator""ms;

constexpr std::chrono::minutes generous{2};

class ProgramAudioTests : public testing::Test {
protected:
    [[nodiscard]] Foundation::Environment environment() const {
        return Foundation::Environment({{"PATH", programs.path().string() + ":relative"}, {"SIGN", "ours"}});
    }
    [[nodiscard]] std::string words(std::string const& name) const { return wordsGivenTo(programs, name); }

    // What a file says once it is there.
    static std::string textWhenThere(std::filesystem::path const& path) {
        auto const bound = std::chrono::steady_clock::now() + generous;
        while (!std::filesystem::exists(path) && std::chrono::steady_clock::now() < bound)
            std::this_thread::sleep_for(10ms);
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    TemporaryFolder programs;
};

TEST_F(ProgramAudioTests, aProgramIsFoundInTheFirstFolderThatHasIt) {
    TemporaryFolder const other;
    placeStandIn(programs, "one");
    placeStandIn(other, "one");
    placeStandIn(other, "two");
    programs.place("two", "no program");
    std::filesystem::create_directory(programs.path() / "three");
    auto const find = [&](std::string const& path, std::string_view name) {
        return ChildProgram::find(Foundation::Environment({{"PATH", path}}), name);
    };
    auto const both = "::/nonexistent:" + programs.path().string() + ":" + other.path().string() + ":";
    EXPECT_EQ(find(both, "one"), programs.path() / "one");
    EXPECT_EQ(find(both, "two"), other.path() / "two");
    EXPECT_EQ(find(both, "three"), std::nullopt);
    EXPECT_EQ(find("", "one"), std::nullopt);
    EXPECT_EQ(ChildProgram::find(Foundation::Environment(), "one"), std::nullopt);
}

TEST_F(ProgramAudioTests, aProgramRunsInTheGivenEnvironmentAndItsExitCodeIsTold) {
    placeStandIn(programs, "sign", "test \"$SIGN\" = ours && test -z \"$HOME\" && exit 7");
    EXPECT_EQ(ChildProgram::run(programs.path() / "sign", {}, environment(), generous), 7);
}

TEST_F(ProgramAudioTests, aProgramHasNoneOfOurStreams) {
    placeStandIn(programs, "streams",
                 "for end in 0 1 2; do [ \"$(readlink /proc/$$/fd/$end)\" = /dev/null ] || exit 1; done");
    EXPECT_EQ(ChildProgram::run(programs.path() / "streams", {},
                                environment().setting("PATH", "/usr/bin:/bin"), generous),
              0);
}

TEST_F(ProgramAudioTests, aProgramHasNoneOfOurFiles) {
    int const file = ::open("/dev/zero", O_RDONLY); // As one that a shell left open, without FD_CLOEXEC.
    ASSERT_GE(file, 0);
    placeStandIn(programs, "files", "[ ! -e /proc/$$/fd/$1 ]");
    EXPECT_EQ(ChildProgram::run(programs.path() / "files", {std::to_string(file)}, environment(), generous),
              0);
    ::close(file);
}

TEST_F(ProgramAudioTests, aProgramApartHasAFolderAndASessionOfItsOwn) {
    auto const report = programs.path() / "report";
    placeStandIn(programs, "apart",
                 "echo $(readlink /proc/$$/cwd) $$ $(cut -d' ' -f6 /proc/$$/stat) > \"$1.part\"; mv "
                 "\"$1.part\" \"$1\"");
    ASSERT_TRUE(ChildProgram::startApart(programs.path() / "apart", {report.string()},
                                         environment().setting("PATH", "/usr/bin:/bin")));
    std::istringstream stream(textWhenThere(report));
    std::string folder;
    int process = 0;
    int session = -1;
    stream >> folder >> process >> session;
    EXPECT_EQ(folder, "/");
    EXPECT_EQ(session, process);
    ::waitpid(process, nullptr, 0);
}

TEST_F(ProgramAudioTests, aProgramApartHasNoneOfOurStreamsAndFiles) {
    auto const report = programs.path() / "report";
    int const file = ::open("/dev/zero", O_RDONLY); // Without FD_CLOEXEC.
    ASSERT_GE(file, 0);
    placeStandIn(
        programs, "apart",
        "at=/proc/$$/fd; seen=\"$(readlink $at/0) $(readlink $at/1) $(readlink $at/2)\"; "
        "[ -e $at/$2 ] || seen=\"$seen closed\"; echo \"$seen\" > \"$1.part\"; mv \"$1.part\" \"$1\"");
    ASSERT_TRUE(ChildProgram::startApart(programs.path() / "apart", {report.string(), std::to_string(file)},
                                         environment().setting("PATH", "/usr/bin:/bin")));
    ::close(file);
    EXPECT_EQ(textWhenThere(report), "/dev/null /dev/null /dev/null closed\n");
    ::wait(nullptr);
}

TEST_F(ProgramAudioTests, signalsReachAProgramApartAsUsual) {
    auto const report = programs.path() / "report";
    auto* const former = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    placeStandIn(
        programs, "apart",
        "sed -n 's/^Sig\\(Blk\\|Ign\\):\\t//p' /proc/self/status > \"$1.part\"; mv \"$1.part\" \"$1\"");
    ASSERT_TRUE(ChildProgram::startApart(programs.path() / "apart", {report.string()},
                                         environment().setting("PATH", "/usr/bin:/bin")));
    sigset_t afterwards;
    ::pthread_sigmask(SIG_SETMASK, &before, &afterwards);
    std::signal(SIGPIPE, former);
    EXPECT_TRUE(sigismember(&afterwards, SIGTERM) == 1 && sigismember(&afterwards, SIGINT) == 0)
        << "this program's own signals are as they were";
    std::istringstream masks(textWhenThere(report));
    std::uint64_t blockedThere = ~0ULL;
    std::uint64_t ignoredThere = ~0ULL;
    masks >> std::hex >> blockedThere >> ignoredThere;
    EXPECT_EQ(blockedThere, 0);
    EXPECT_EQ(ignoredThere & (1ULL << (SIGPIPE - 1)), 0); // Others may have been ignored all along.
    ::wait(nullptr);
}

TEST_F(ProgramAudioTests, aProgramApartThatCannotBeRunLeavesAProcessThatEnds) {
    ASSERT_TRUE(ChildProgram::startApart(programs.path() / "missing", {}, environment()));
    int status = 0;
    ASSERT_GT(::wait(&status), 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), 0);
}

TEST_F(ProgramAudioTests, whatWeIgnoreEndsAProgramAsUsual) {
    auto* const former = std::signal(SIGPIPE, SIG_IGN);
    placeStandIn(programs, "broken", "kill -PIPE $$\nexit 0");
    EXPECT_EQ(ChildProgram::run(programs.path() / "broken", {}, environment(), generous), std::nullopt);
    std::signal(SIGPIPE, former);
}

TEST_F(ProgramAudioTests, aProgramThatDoesNotStartOrDoesNotEndHasNoExitCode) {
    EXPECT_EQ(ChildProgram::run(programs.path() / "missing", {}, environment(), generous), std::nullopt);
    placeStandIn(programs, "endless", "while :; do :; done");
    EXPECT_EQ(ChildProgram::run(programs.path() / "endless", {}, environment(), 50ms), std::nullopt);
    placeStandIn(programs, "killed", "kill -KILL $$");
    EXPECT_EQ(ChildProgram::run(programs.path() / "killed", {}, environment(), generous), std::nullopt);
}

TEST_F(ProgramAudioTests, withoutASpeechProgramNothingCanSpeak) {
    SpeechDispatcherSynthesizer speech(environment());
    EXPECT_EQ(speech.speak({.text = "a", .languageCode = "en"}), std::unexpected(AudioFailure::unavailable));
}

TEST_F(ProgramAudioTests, theTextIsGivenWithItsLanguageAndCannotBeAnOption) {
    placeStandIn(programs, "spd-say");
    SpeechDispatcherSynthesizer speech(environment(), generous);
    EXPECT_TRUE(speech.speak({.text = "--wait \"$HOME\" `x`\nTienes a ñ.", .languageCode = "es-CO"}));
    EXPECT_EQ(words("spd-say"), "<--application-name>\n<Quillora>\n<--priority>\n<important>\n<--language>\n"
                                "<es-CO>\n<-->\n<--wait \"$HOME\" `x` Tienes a ñ.>\n");
}

TEST_F(ProgramAudioTests, anEndlessTextIsCut) {
    placeStandIn(programs, "spd-say");
    SpeechDispatcherSynthesizer speech(environment(), generous);
    EXPECT_TRUE(speech.speak({.text = std::string(5'000'000, 'a'), .languageCode = "en"}));
    EXPECT_LT(words("spd-say").size(), 1000U);
}

TEST_F(ProgramAudioTests, aSpeechProgramThatFailsOrHangsHasRefused) {
    placeStandIn(programs, "spd-say", "exit 1");
    SpeechDispatcherSynthesizer failing(environment(), generous);
    EXPECT_EQ(failing.speak({.text = "a", .languageCode = "en"}), std::unexpected(AudioFailure::refused));
    placeStandIn(programs, "spd-say", "while :; do :; done");
    SpeechDispatcherSynthesizer hanging(environment(), 50ms);
    EXPECT_EQ(hanging.speak({.text = "a", .languageCode = "en"}), std::unexpected(AudioFailure::refused));
}

TEST_F(ProgramAudioTests, withoutAPlayerNothingCanPlay) {
    EXPECT_EQ(ProgramSoundPlayer(environment()).play("/a.wav"), std::unexpected(AudioFailure::unavailable));
}

TEST_F(ProgramAudioTests, theFirstPlayerThatIsThereAndDoesItIsEnough) {
    placeStandIn(programs, "paplay", "exit 1");
    placeStandIn(programs, "canberra-gtk-play");
    placeStandIn(programs, "aplay");
    EXPECT_TRUE(ProgramSoundPlayer(environment(), generous).play("/so und.wav"));
    EXPECT_EQ(words("paplay"), "</so und.wav>\n");
    EXPECT_EQ(words("canberra-gtk-play"), "<--file>\n</so und.wav>\n");
    EXPECT_EQ(words("aplay"), "");
}

TEST_F(ProgramAudioTests, whenEveryPlayerFailsTheyHaveRefused) {
    for (auto const* name : {"pw-play", "paplay", "canberra-gtk-play", "aplay"})
        placeStandIn(programs, name, "exit 1");
    EXPECT_EQ(ProgramSoundPlayer(environment(), generous).play("/a.wav"),
              std::unexpected(AudioFailure::refused));
    EXPECT_EQ(words("pw-play"), "</a.wav>\n");
    EXPECT_EQ(words("aplay"), "<--quiet>\n</a.wav>\n");
}

} // namespace
