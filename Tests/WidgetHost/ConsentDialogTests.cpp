#include "LoopDriver.h"
#include "TestDisplay.h"

#include "Platform/Desktop/ConsentDialog.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/TaskThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <optional>
#include <string>
#include <vector>

// What the dialog that asks for the calendars answers, on a display of the test's own.
namespace {

using Platform::ConsentAnswer;
using TestDisplay::nameOf;
using TestDisplay::toplevels;

class ConsentDialogTests : public testing::Test {
protected:
    void SetUp() override {
        TestDisplay::open();
        dialog.onAnswer([this] { ++timesAnswered; });
    }

    /// Asks on another thread, as the provider does, and yields what it is told there and then.
    ConsentAnswer ask() {
        std::optional<ConsentAnswer> told;
        thread.executor().start(waitForAnswer(dialog, mainLoop, told));
        EXPECT_TRUE(LoopDriver::runUntil([&] { return told.has_value(); }));
        return told.value_or(ConsentAnswer::unavailable);
    }

    static Foundation::Task<void> waitForAnswer(Platform::ConsentDialog& dialog,
                                                Platform::GLibMainLoop& mainLoop,
                                                std::optional<ConsentAnswer>& answer) {
        auto const given = co_await dialog.ask();
        mainLoop.invoke([&answer, given] { answer = given; });
    }

    void open() {
        EXPECT_EQ(ask(), ConsentAnswer::unavailable);
        ASSERT_TRUE(LoopDriver::runUntil([] { return toplevels().size() == 1; }));
    }

    void openAndClose() {
        open();
        respond(GTK_RESPONSE_DELETE_EVENT);
        EXPECT_TRUE(LoopDriver::runUntil([] { return toplevels().empty(); }));
    }

    static void respond(int response) { gtk_dialog_response(GTK_DIALOG(toplevels().front()), response); }

    Platform::GLibMainLoop mainLoop;
    int timesAnswered = 0;
    Platform::ConsentDialog dialog{mainLoop,
                                   {.title = "Access",
                                    .question = "May Quillora read 100% of your calendars?",
                                    .explanation = "It shows them.",
                                    .yes = "_Allow",
                                    .no = "_Don't Allow"}};
    Platform::TaskThread thread;
};

TEST_F(ConsentDialogTests, whoAsksIsNotKeptWaitingAndFetchesTheAnswerOnce) {
    struct Row {
        int response;
        ConsentAnswer answer;
    };
    for (auto const& row : {Row{.response = GTK_RESPONSE_YES, .answer = ConsentAnswer::yes},
                            Row{.response = GTK_RESPONSE_NO, .answer = ConsentAnswer::no}}) {
        SCOPED_TRACE(row.response);
        timesAnswered = 0;
        open();
        EXPECT_EQ(timesAnswered, 0);
        respond(row.response);
        EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
        EXPECT_TRUE(toplevels().empty());
        EXPECT_EQ(ask(), row.answer);
        // Asked once more it is a question of its own.
        open();
        dialog.withdraw();
    }
}

TEST_F(ConsentDialogTests, whoClosedItIsNotAskedAgain) {
    openAndClose();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    // What the question would open was queued before the answer to it.
    EXPECT_TRUE(toplevels().empty());
    EXPECT_EQ(timesAnswered, 0);
}

TEST_F(ConsentDialogTests, whoClosedItIsAskedAgainOnWish) {
    openAndClose();
    dialog.askAnew();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    EXPECT_TRUE(LoopDriver::runUntil([] { return toplevels().size() == 1; })) << "no dialog was opened";
}

TEST_F(ConsentDialogTests, whoClosedItIsAskedAgainOnceTheAnswerWasGivenElsewhere) {
    openAndClose();
    dialog.withdraw();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    EXPECT_TRUE(LoopDriver::runUntil([] { return toplevels().size() == 1; })) << "no dialog was opened";
}

TEST_F(ConsentDialogTests, oneDialogStandsForAllQuestions) {
    open();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    EXPECT_EQ(toplevels().size(), 1U);
    respond(GTK_RESPONSE_YES);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
    EXPECT_EQ(ask(), ConsentAnswer::yes);
}

TEST_F(ConsentDialogTests, withdrawnQuestionIsGoneAndSoIsAnAnswerThatNobodyFetched) {
    open();
    dialog.withdraw();
    EXPECT_TRUE(LoopDriver::runUntil([] { return toplevels().empty(); }));
    EXPECT_EQ(timesAnswered, 0);
    open();
    respond(GTK_RESPONSE_YES);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
    dialog.withdraw();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    dialog.withdraw();
}

TEST_F(ConsentDialogTests, screenReaderFindsTheQuestionAndPressesAnAnswer) {
    open();
    auto* const window = gtk_widget_get_accessible(toplevels().front());
    EXPECT_EQ(atk_object_get_role(window), ATK_ROLE_ALERT);
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(toplevels().front())), "Access");
    std::vector<std::string> texts;
    for (auto const& label : TestDisplay::parts(toplevels().front(), ATK_ROLE_LABEL)) {
        texts.push_back(nameOf(label));
    }
    EXPECT_THAT(texts,
                testing::IsSupersetOf({"May Quillora read 100% of your calendars?", "It shows them."}));
    auto const buttons = TestDisplay::parts(toplevels().front(), ATK_ROLE_PUSH_BUTTON);
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_EQ(nameOf(buttons[0]), "Don't Allow");
    EXPECT_EQ(nameOf(buttons[1]), "Allow");
    TestDisplay::press(buttons[1]);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
    EXPECT_EQ(ask(), ConsentAnswer::yes);
}

} // namespace
