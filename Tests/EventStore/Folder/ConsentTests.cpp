#include "Platform/EventStore/Folder/ConsentRecord.h"
#include "Platform/EventStore/Folder/TerminalConsentPrompt.h"
#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <array>
#include <poll.h>
#include <pty.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>

using namespace Platform;

namespace {

constexpr auto file = "/config/quillora/calendar-access.json";

class ConsentRecordTests : public testing::Test {
protected:
    std::shared_ptr<InMemoryFileManager> files = std::make_shared<InMemoryFileManager>();
    ConsentRecord consent{"/config/quillora", files};
};

// Both ends of a terminal; what a person would type goes into `keyboard`.
class Terminal {
public:
    Terminal() {
        EXPECT_EQ(::openpty(&keyboard, &screen, nullptr, nullptr, nullptr), 0);
        termios settings{};
        EXPECT_EQ(::tcgetattr(screen, &settings), 0);
        settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        EXPECT_EQ(::tcsetattr(screen, TCSANOW, &settings), 0);
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    ~Terminal() {
        ::close(keyboard);
        ::close(screen);
    }

    void type(std::string_view text) const {
        EXPECT_EQ(::write(keyboard, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    // What came onto the screen, at least `length` bytes of it.
    [[nodiscard]] std::string shown(std::size_t length) const {
        std::string text;
        while (text.size() < length) {
            pollfd waiting{.fd = keyboard, .events = POLLIN, .revents = 0};
            if (::poll(&waiting, 1, 10'000) != 1) break;
            std::array<char, 4096> part{};
            auto const count = ::read(keyboard, part.data(), part.size());
            if (count <= 0) break;
            text.append(part.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

    int keyboard = -1;
    int screen = -1;
};

ConsentAnswer ask(int input, int output) {
    TerminalConsentPrompt prompt(input, output,
                                 {.question = "May it? ",
                                  .again = "Yes or no: ",
                                  .yesOrNo = [](std::string_view line) -> std::optional<bool> {
                                      if (line == "yes") return true;
                                      if (line == "no") return false;
                                      return std::nullopt;
                                  }});
    return Foundation::runTask(prompt.ask());
}

} // namespace

TEST_F(ConsentRecordTests, aRecordThatTellsNothingHasAReason) {
    EXPECT_EQ(consent.failure(), std::error_code()) << "no record";
    ASSERT_FALSE(consent.record(EKAuthorizationStatus::denied));
    EXPECT_EQ(consent.failure(), std::error_code());
    for (auto const* damaged : {"", "rubbish", "-1", "2.5", "\"3\"", "[3]"}) {
        SCOPED_TRACE(damaged);
        ASSERT_FALSE(files->writeAtomically(file, damaged));
        EXPECT_EQ(consent.failure(), std::errc::bad_message);
        EXPECT_EQ(consent.status(), EKAuthorizationStatus::notDetermined);
    }
}

TEST_F(ConsentRecordTests, aRecordThatCannotBeReadSaysWhy) {
    ASSERT_FALSE(consent.record(EKAuthorizationStatus::fullAccess));
    files->refusesReads();
    EXPECT_EQ(consent.failure(), std::errc::permission_denied);
    EXPECT_EQ(consent.status(), EKAuthorizationStatus::notDetermined);
}

TEST_F(ConsentRecordTests, theNumberInTheFileIsTheStatus) {
    struct Row {
        char const* content;
        EKAuthorizationStatus status;
    };
    for (auto const& row : std::vector<Row>{{"0", EKAuthorizationStatus::notDetermined},
                                            {"1", EKAuthorizationStatus::restricted},
                                            {"2", EKAuthorizationStatus::denied},
                                            {"3", EKAuthorizationStatus::fullAccess},
                                            {"4", EKAuthorizationStatus::writeOnly},
                                            {" 3\n", EKAuthorizationStatus::fullAccess},
                                            {"7", static_cast<EKAuthorizationStatus>(7)},
                                            {"", EKAuthorizationStatus::notDetermined},
                                            {"-1", EKAuthorizationStatus::notDetermined},
                                            {"3.5", EKAuthorizationStatus::notDetermined},
                                            {"\"3\"", EKAuthorizationStatus::notDetermined},
                                            {"[3]", EKAuthorizationStatus::notDetermined},
                                            {"true", EKAuthorizationStatus::notDetermined}}) {
        files->place(file, row.content);
        EXPECT_EQ(consent.status(), row.status) << row.content;
    }
}

TEST_F(ConsentRecordTests, withoutAReadableFileNothingIsDetermined) {
    EXPECT_EQ(consent.status(), EKAuthorizationStatus::notDetermined);
    files->place(file, "3");
    files->refusesReads();
    EXPECT_EQ(consent.status(), EKAuthorizationStatus::notDetermined);
}

TEST_F(ConsentRecordTests, anAnswerIsKeptAndForgotten) {
    EXPECT_FALSE(consent.record(EKAuthorizationStatus::fullAccess));
    EXPECT_EQ(files->content(file), "3");
    EXPECT_EQ(files->mode(file), 0600U);
    EXPECT_FALSE(consent.record(EKAuthorizationStatus::denied));
    EXPECT_EQ(consent.status(), EKAuthorizationStatus::denied);
    EXPECT_FALSE(consent.reset());
    EXPECT_EQ(files->content(file), std::nullopt);
    EXPECT_FALSE(consent.reset());
}

TEST_F(ConsentRecordTests, aFailedWriteIsToldAndTheOldAnswerStays) {
    ASSERT_FALSE(consent.record(EKAuthorizationStatus::denied));
    files->failsAfter(0);
    EXPECT_TRUE(consent.record(EKAuthorizationStatus::fullAccess));
    EXPECT_EQ(consent.status(), EKAuthorizationStatus::denied);
}

TEST(TerminalConsentPromptTests, theTextsTellWhatCountsAsAnAnswer) {
    struct Row {
        char const* typed;
        ConsentAnswer answer;
    };
    for (auto const& row : std::vector<Row>{{"yes\n", ConsentAnswer::yes},
                                            {"  yes \r\n", ConsentAnswer::yes},
                                            {"no\n", ConsentAnswer::no},
                                            {"y\nno\n", ConsentAnswer::no},
                                            {"perhaps\n\nyes\n", ConsentAnswer::yes},
                                            {"a\nb\nc\nyes\n", ConsentAnswer::unavailable},
                                            {"\x04", ConsentAnswer::unavailable},
                                            {"a\n\x04", ConsentAnswer::unavailable}}) {
        Terminal const terminal;
        terminal.type(row.typed);
        EXPECT_EQ(ask(terminal.screen, terminal.screen), row.answer) << row.typed;
    }
}

TEST(TerminalConsentPromptTests, theQuestionIsPutAndRepeatedAfterAnUnclearAnswer) {
    Terminal const terminal;
    terminal.type("what?\nno\n");
    EXPECT_EQ(ask(terminal.screen, terminal.screen), ConsentAnswer::no);
    constexpr std::string_view expected = "May it? Yes or no: ";
    EXPECT_EQ(terminal.shown(expected.size()), expected);
}

TEST(TerminalConsentPromptTests, whatFollowsAQuestionWithoutAnAnswerBeginsOnALineOfItsOwn) {
    Terminal const terminal;
    terminal.type("\x04");
    EXPECT_EQ(ask(terminal.screen, terminal.screen), ConsentAnswer::unavailable);
    constexpr std::string_view expected = "May it? \r\n";
    EXPECT_EQ(terminal.shown(expected.size()), expected);
}

TEST(TerminalConsentPromptTests, withoutATerminalOnBothSidesNobodyIsAsked) {
    Terminal const terminal;
    terminal.type("yes\n");
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    EXPECT_EQ(ask(pipe[0], terminal.screen), ConsentAnswer::unavailable);
    EXPECT_EQ(ask(terminal.screen, pipe[1]), ConsentAnswer::unavailable);
    ::close(pipe[0]);
    ::close(pipe[1]);
}
