#include "DisplayServer.h"
#include "LoopDriver.h"
#include "Tests/Face/SampleFaces.h"

#include "Platform/Desktop/ConsentDialog.h"
#include "Platform/Desktop/Display.h"
#include "Platform/Desktop/FaceWindow.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/TaskThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What a screen reader finds in the window, and what the dialog answers, on a display of the test's own.
namespace {

using Platform::ColorScheme;
using Platform::ConsentAnswer;
using Platform::FaceWindowContent;
using Platform::WidgetFamily;

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Accessible = std::unique_ptr<AtkObject, Unreference>;

/// One display for the process: the toolkit can be opened only once.
void openTestDisplay() {
    static DisplayServer const server;
    static bool const isOpen = [] {
        setenv("DISPLAY", server.name().c_str(), 1);
        setenv("GDK_BACKEND", "x11", 1);
        setenv("NO_AT_BRIDGE", "1", 1);
        return Platform::openDisplay(Foundation::Environment().setting("DISPLAY", server.name()),
                                     Platform::WindowPlacement::desktop);
    }();
    ASSERT_TRUE(isOpen);
}

std::vector<GtkWidget*> toplevels() {
    std::vector<GtkWidget*> windows;
    GList* const list = gtk_window_list_toplevels();
    for (GList* entry = list; entry != nullptr; entry = entry->next) {
        windows.push_back(GTK_WIDGET(entry->data));
    }
    g_list_free(list);
    return windows;
}

/// Without the windows that the toolkit opens for purposes of its own.
std::vector<GtkWidget*> dialogs() {
    auto windows = toplevels();
    std::erase_if(windows, [](GtkWidget* window) { return !GTK_IS_DIALOG(window); });
    return windows;
}

std::string nameOf(Accessible const& accessible) {
    char const* const name = atk_object_get_name(accessible.get());
    return name == nullptr ? "" : name;
}

bool hasState(Accessible const& accessible, AtkStateType state) {
    std::unique_ptr<AtkStateSet, Unreference> const states(atk_object_ref_state_set(accessible.get()));
    return atk_state_set_contains_state(states.get(), state) != FALSE;
}

class FaceWindowTests : public testing::Test {
protected:
    void SetUp() override {
        openTestDisplay();
        window.emplace(Platform::WindowPlacement::desktop,
                       Platform::FaceWindowTexts{.title = "Quillora",
                                                 .today = "Today",
                                                 .size = "Size",
                                                 .small = "Small",
                                                 .medium = "Medium",
                                                 .large = "Large",
                                                 .reload = "Reload",
                                                 .quit = "Quit"},
                       Platform::FaceWindowActions{
                           .previousDay = [this] { asked.emplace_back("previous"); },
                           .nextDay = [this] { asked.emplace_back("next"); },
                           .today = [this] { asked.emplace_back("today"); },
                           .reload = [this] { asked.emplace_back("reload"); },
                           .quit = [this] { asked.emplace_back("quit"); },
                           .chooseFamily = [this](WidgetFamily) { asked.emplace_back("family"); },
                       });
    }

    void show(Platform::FaceLayout layout) {
        bool isPainted = false;
        window->show({.layout = std::move(layout), .tooltips = {}});
        window->afterNextFrame([&] { isPainted = true; });
        window->present();
        ASSERT_TRUE(LoopDriver::runUntil([&] { return isPainted; }));
    }

    /// The accessible that holds the buttons and the rows.
    static Accessible face() {
        Accessible const top(ATK_OBJECT(g_object_ref(gtk_widget_get_accessible(toplevels().front()))));
        return Accessible(atk_object_ref_accessible_child(top.get(), 0));
    }

    static std::vector<Accessible> children() {
        auto const parent = face();
        std::vector<Accessible> found;
        for (int index = 0; index < atk_object_get_n_accessible_children(parent.get()); ++index) {
            found.emplace_back(atk_object_ref_accessible_child(parent.get(), index));
        }
        return found;
    }

    static std::vector<std::string> names() {
        std::vector<std::string> found;
        for (auto const& child : children()) {
            found.push_back(nameOf(child));
        }
        return found;
    }

    static Platform::FaceLayout twoCards() {
        auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
        layout.rows.emplace_back(
            SampleFaces::card(layout, "Stand-up", "09:00 a.m.", "15m", SampleFaces::rgb(0xD1495B)));
        layout.rows.emplace_back(
            SampleFaces::card(layout, "Dentist", "05:30 p.m.", "30m", SampleFaces::rgb(0x2E86AB)));
        return layout;
    }

    std::optional<Platform::FaceWindow> window;
    std::vector<std::string> asked;
};

TEST_F(FaceWindowTests, screenReaderFindsTheButtonsTheHeadingAndEachRow) {
    show(twoCards());
    EXPECT_EQ(names(), (std::vector<std::string>{"Previous day", "Next day", "Wednesday 18",
                                                 "Stand-up, 09:00 a.m., 15m", "Dentist, 05:30 p.m., 30m"}));
    EXPECT_EQ(atk_object_get_role(face().get()), ATK_ROLE_LIST);
    std::vector<AtkRole> roles;
    for (auto const& child : children()) {
        roles.push_back(atk_object_get_role(child.get()));
    }
    EXPECT_EQ(roles, (std::vector{ATK_ROLE_PUSH_BUTTON, ATK_ROLE_PUSH_BUTTON, ATK_ROLE_HEADING,
                                  ATK_ROLE_LIST_ITEM, ATK_ROLE_LIST_ITEM}));
}

TEST_F(FaceWindowTests, aNoticeStandsBesideTheFaceAndGoes) {
    show(twoCards());
    auto const rows = names();
    auto const description = [] {
        char const* const text = atk_object_get_description(face().get());
        return std::string(text == nullptr ? "" : text);
    };
    EXPECT_EQ(description(), "");
    window->setNotice("Not all calendars could be read");
    EXPECT_EQ(description(), "Not all calendars could be read");
    EXPECT_EQ(names(), rows);
    window->setNotice("");
    EXPECT_EQ(description(), "");
}

TEST_F(FaceWindowTests, theMenuBeginsWithTheNotice) {
    show(twoCards());
    GtkWidget* const top = toplevels().front();
    auto const firstShown = [top]() -> std::pair<std::string, bool> {
        gboolean isHandled = FALSE;
        g_signal_emit_by_name(top, "popup-menu", &isHandled);
        GList* const menus = gtk_menu_get_for_attach_widget(gtk_bin_get_child(GTK_BIN(top)));
        if (menus == nullptr) {
            return {"no menu", false};
        }
        GList* const items = gtk_container_get_children(GTK_CONTAINER(menus->data));
        std::pair<std::string, bool> first{"no item", false};
        for (GList* entry = items; entry != nullptr; entry = entry->next) {
            auto* const item = GTK_WIDGET(entry->data);
            if (gtk_widget_get_visible(item) != FALSE) {
                first = {gtk_menu_item_get_label(GTK_MENU_ITEM(item)),
                         gtk_widget_get_sensitive(item) != FALSE};
                break;
            }
        }
        g_list_free(items);
        gtk_menu_popdown(GTK_MENU(menus->data));
        return first;
    };
    EXPECT_EQ(firstShown(), (std::pair<std::string, bool>("Today", true)));
    window->setNotice("Not all calendars could be read");
    EXPECT_EQ(firstShown(), (std::pair<std::string, bool>("Not all calendars could be read", false)));
    window->setNotice("");
    EXPECT_EQ(firstShown(), (std::pair<std::string, bool>("Today", true)));
}

TEST_F(FaceWindowTests, rowsKnowTheirParentTheirPlaceAndThatTheyAreSeen) {
    show(twoCards());
    auto const parent = face();
    auto const found = children();
    int bottom = 0;
    for (std::size_t index = 2; index < found.size(); ++index) {
        auto const& row = found[index];
        EXPECT_EQ(atk_object_get_parent(row.get()), parent.get());
        EXPECT_EQ(atk_object_get_index_in_parent(row.get()), static_cast<int>(index));
        EXPECT_TRUE(hasState(row, ATK_STATE_SHOWING));
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        atk_component_get_extents(ATK_COMPONENT(row.get()), &x, &y, &width, &height, ATK_XY_WINDOW);
        EXPECT_GE(x, 0);
        EXPECT_LE(x + width, 364);
        EXPECT_GE(y, bottom) << "rows stand under each other";
        EXPECT_GT(height, 10);
        bottom = y + height;
    }
    EXPECT_LE(bottom, 382);
}

TEST_F(FaceWindowTests, newDayReplacesTheRowsAndTheOldOnesAreDefunct) {
    show(twoCards());
    auto const old = children();
    int added = 0;
    int removed = 0;
    auto const parent = face();
    g_signal_connect_swapped(parent.get(), "children-changed::add", G_CALLBACK(+[](int* count) { ++*count; }),
                             &added);
    g_signal_connect_swapped(parent.get(), "children-changed::remove",
                             G_CALLBACK(+[](int* count) { ++*count; }), &removed);
    show(SampleFaces::empty(WidgetFamily::systemLarge, ColorScheme::light));
    g_signal_handlers_disconnect_by_data(parent.get(), &added);
    g_signal_handlers_disconnect_by_data(parent.get(), &removed);
    EXPECT_EQ(removed, 3);
    EXPECT_EQ(added, 2);
    EXPECT_TRUE(hasState(old.back(), ATK_STATE_DEFUNCT));
    EXPECT_EQ(names().back(), "Sin eventos");
}

TEST_F(FaceWindowTests, sameDayKeepsItsRows) {
    show(twoCards());
    auto const old = children();
    show(twoCards());
    EXPECT_FALSE(hasState(old.back(), ATK_STATE_DEFUNCT));
    EXPECT_EQ(children().back().get(), old.back().get());
}

TEST_F(FaceWindowTests, rowsOutliveTheWindowAsDefunctOnes) {
    show(twoCards());
    auto const old = children();
    window.reset();
    EXPECT_TRUE(hasState(old.back(), ATK_STATE_DEFUNCT));
}

TEST_F(FaceWindowTests, screenReaderPressesTheButtons) {
    show(twoCards());
    auto const found = children();
    for (std::size_t index = 0; index < 2; ++index) {
        ASSERT_TRUE(ATK_IS_ACTION(found[index].get()));
        atk_action_do_action(ATK_ACTION(found[index].get()), 0);
    }
    EXPECT_TRUE(LoopDriver::runUntil([&] { return asked.size() == 2; }));
    EXPECT_EQ(asked, (std::vector<std::string>{"previous", "next"}));
}

TEST_F(FaceWindowTests, buttonsAreAtLeastThirtyPointsEachWay) {
    for (auto const family :
         {WidgetFamily::systemSmall, WidgetFamily::systemMedium, WidgetFamily::systemLarge}) {
        show(SampleFaces::busy(family, ColorScheme::dark));
        auto const found = children();
        for (std::size_t index = 0; index < 2; ++index) {
            int x = 0;
            int y = 0;
            int width = 0;
            int height = 0;
            atk_component_get_extents(ATK_COMPONENT(found[index].get()), &x, &y, &width, &height,
                                      ATK_XY_WINDOW);
            EXPECT_GE(width, 30);
            EXPECT_GE(height, 30);
        }
    }
}

TEST_F(FaceWindowTests, windowTakesTheSizeOfItsFace) {
    auto const sizeIs = [](int width, int height) {
        int shownWidth = 0;
        int shownHeight = 0;
        gtk_window_get_size(GTK_WINDOW(toplevels().front()), &shownWidth, &shownHeight);
        return shownWidth == width && shownHeight == height;
    };
    show(SampleFaces::empty(WidgetFamily::systemLarge, ColorScheme::light));
    EXPECT_TRUE(LoopDriver::runUntil([&] { return sizeIs(364, 382); }));
    show(SampleFaces::empty(WidgetFamily::systemSmall, ColorScheme::light));
    EXPECT_TRUE(LoopDriver::runUntil([&] { return sizeIs(170, 170); }));

    auto grown = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    for (int row = 0; row < 30; ++row) {
        grown.rows.emplace_back(
            Platform::BarRow{.identifier = "", .name = "All day", .color = SampleFaces::rgb(0x2E86AB)});
    }
    show(grown);
    int height = 0;
    EXPECT_TRUE(LoopDriver::runUntil([&] {
        gtk_window_get_size(GTK_WINDOW(toplevels().front()), nullptr, &height);
        return height > 500;
    }));
}

class ConsentDialogTests : public testing::Test {
protected:
    void SetUp() override {
        openTestDisplay();
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
        ASSERT_TRUE(LoopDriver::runUntil([] { return dialogs().size() == 1; }));
    }

    void openAndClose() {
        open();
        respond(GTK_RESPONSE_DELETE_EVENT);
        EXPECT_TRUE(LoopDriver::runUntil([] { return dialogs().empty(); }));
    }

    static void respond(int response) { gtk_dialog_response(GTK_DIALOG(dialogs().front()), response); }

    static std::vector<Accessible> parts(AtkRole role) {
        std::vector<Accessible> found;
        collect(gtk_widget_get_accessible(dialogs().front()), role, found);
        return found;
    }

    static void collect(AtkObject* accessible, AtkRole role, std::vector<Accessible>& found) {
        for (int index = 0; index < atk_object_get_n_accessible_children(accessible); ++index) {
            Accessible child(atk_object_ref_accessible_child(accessible, index));
            collect(child.get(), role, found);
            if (atk_object_get_role(child.get()) == role) {
                found.push_back(std::move(child));
            }
        }
    }

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
        EXPECT_TRUE(dialogs().empty());
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
    EXPECT_TRUE(dialogs().empty());
    EXPECT_EQ(timesAnswered, 0);
}

TEST_F(ConsentDialogTests, whoClosedItIsAskedAgainOnWish) {
    openAndClose();
    dialog.askAnew();
    open();
}

TEST_F(ConsentDialogTests, whoClosedItIsAskedAgainOnceTheAnswerWasGivenElsewhere) {
    openAndClose();
    dialog.withdraw();
    open();
}

TEST_F(ConsentDialogTests, oneDialogStandsForAllQuestions) {
    open();
    EXPECT_EQ(ask(), ConsentAnswer::unavailable);
    EXPECT_EQ(dialogs().size(), 1U);
    respond(GTK_RESPONSE_YES);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
    EXPECT_EQ(ask(), ConsentAnswer::yes);
}

TEST_F(ConsentDialogTests, withdrawnQuestionIsGoneAndSoIsAnAnswerThatNobodyFetched) {
    open();
    dialog.withdraw();
    EXPECT_TRUE(LoopDriver::runUntil([] { return dialogs().empty(); }));
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
    auto* const window = gtk_widget_get_accessible(dialogs().front());
    EXPECT_EQ(atk_object_get_role(window), ATK_ROLE_ALERT);
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialogs().front())), "Access");
    std::vector<std::string> texts;
    for (auto const& label : parts(ATK_ROLE_LABEL)) {
        texts.push_back(nameOf(label));
    }
    EXPECT_THAT(texts,
                testing::IsSupersetOf({"May Quillora read 100% of your calendars?", "It shows them."}));
    auto const buttons = parts(ATK_ROLE_PUSH_BUTTON);
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_EQ(nameOf(buttons[0]), "Don't Allow");
    EXPECT_EQ(nameOf(buttons[1]), "Allow");
    ASSERT_TRUE(ATK_IS_ACTION(buttons[1].get()));
    atk_action_do_action(ATK_ACTION(buttons[1].get()), 0);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return timesAnswered == 1; }));
    EXPECT_EQ(ask(), ConsentAnswer::yes);
}

} // namespace
