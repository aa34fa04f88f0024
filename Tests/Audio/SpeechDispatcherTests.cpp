#include "Platform/Audio/SpeechDispatcherSynthesizer.h"

#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

// The real speech server, in a home of the test's own, with the module that makes no sound.
namespace {

using namespace Platform;

class SpeechDispatcherTests : public testing::Test {
protected:
    SpeechDispatcherTests() {
        auto const folder = home.path().string();
        home.place("config/speech-dispatcher/speechd.conf",
                   "LogLevel 5\nLogDir \"" + folder +
                       "\"\nAudioOutputMethod \"libao\"\nAddModule \"dummy\" \"sd_dummy\" \"none.conf\" \"" +
                       folder + "/dummy.log\"\nDefaultModule dummy\nDefaultLanguage \"en\"\n");
        std::filesystem::create_directory(home.path() / "run");
        std::filesystem::permissions(home.path() / "run", std::filesystem::perms::owner_all);
    }
    ~SpeechDispatcherTests() override {
        // The server would end by itself, but only some seconds after its last client.
        std::ifstream file(home.path() / "run/speech-dispatcher/pid/speech-dispatcher.pid");
        if (pid_t server = 0; file >> server && server > 1) ::kill(server, SIGTERM);
    }

    [[nodiscard]] std::string log() const {
        std::ifstream file(home.path() / "speech-dispatcher.log");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    [[nodiscard]] bool comesToLog(std::string const& text) const {
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!log().contains(text)) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::yield();
        }
        return true;
    }

    TemporaryFolder home;
    Foundation::Environment const environment{{{"PATH", "/usr/bin:/bin"},
                                               {"HOME", home.path().string()},
                                               {"XDG_CONFIG_HOME", (home.path() / "config").string()},
                                               {"XDG_RUNTIME_DIR", (home.path() / "run").string()}}};
};

TEST_F(SpeechDispatcherTests, theServerIsStartedAndSpeaksTheTextInItsLanguage) {
    ASSERT_TRUE(std::filesystem::exists("/usr/bin/spd-say")) << "the package speech-dispatcher is missing";
    SpeechDispatcherSynthesizer speech(environment, std::chrono::seconds(60));
    ASSERT_TRUE(speech.speak({.text = "-Tienes a Team sync.", .languageCode = "es-CO"}));
    EXPECT_TRUE(comesToLog("language=es-co")) << log();
    EXPECT_TRUE(comesToLog("<speak>-Tienes a Team sync.</speak>")) << log();
    EXPECT_TRUE(comesToLog("702 END")) << log();
}

} // namespace
