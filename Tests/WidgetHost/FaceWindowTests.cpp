#include "LoopDriver.h"
#include "TestDisplay.h"
#include "Tests/Face/SampleFaces.h"

#include "Platform/Desktop/FaceWindow.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// What a screen reader and the keyboard find in the window, on a display of the test's own.
namespace {

using Platform::ColorScheme;
using Platform::FaceWindowContent;
using Platform::WidgetFamily;
using TestDisplay::Accessible;
using TestDisplay::hasState;
using TestDisplay::nameOf;
using TestDisplay::toplevels;

/// Listens to whether a screen reader is told that a part is no longer there.
class Ends {
public:
    explicit Ends(Accessible const& part) : part(part.get()) {
        handler = g_signal_connect_swapped(this->part, "state-change::defunct",
                                           G_CALLBACK(+[](int* count) { ++*count; }), &count);
    }
    Ends(Ends const&) = delete;
    Ends& operator=(Ends const&) = delete;
    ~Ends() { g_signal_handler_disconnect(part, handler); }

    [[nodiscard]] bool areTold() const { return count > 0; }

private:
    AtkObject* part;
    int count = 0;
    gulong handler;
};

class FaceWindowTests : public testing::Test {
protected:
    void SetUp() override {
        TestDisplay::open();
        window.emplace(
            Platform::WindowPlacement::desktop,
            Platform::FaceWindowTexts{.title = "Quillora",
                                      .today = "Today",
                                      .size = "Size",
                                      .small = "Small",
                                      .medium = "Medium",
                                      .large = "Large",
                                      .reload = "Reload",
                                      .calendarProgram = "Open calendar program",
                                      .quit = "Quit"},
            Platform::FaceWindowActions{
                .previousDay = [this] { asked.emplace_back("previous"); },
                .nextDay = [this] { asked.emplace_back("next"); },
                .today = [this] { asked.emplace_back("today"); },
                .reload = [this] { asked.emplace_back("reload"); },
                .openCalendarProgram = [this] { asked.emplace_back("calendar program"); },
                .quit = [this] { asked.emplace_back("quit"); },
                .chooseFamily = [this](WidgetFamily) { asked.emplace_back("family"); },
                .openRow = [this](std::size_t row) { asked.push_back("row " + std::to_string(row)); },
                .moved = [this] { ++moves; },
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

    /// Header, label, an all-day row, space, a card, the count of the others.
    static Platform::FaceLayout oneOfEachRow() {
        auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
        layout.rows.emplace_back(Platform::LabelRow{.text = "All day"});
        layout.rows.emplace_back(
            Platform::BarRow{.identifier = "", .name = "Holidays", .color = SampleFaces::rgb(0x2E86AB)});
        layout.rows.emplace_back(Platform::SpaceRow{.height = 15});
        layout.rows.emplace_back(
            SampleFaces::card(layout, "Stand-up", "09:00 a.m.", "15m", SampleFaces::rgb(0xD1495B)));
        layout.rows.emplace_back(Platform::MoreRow{.text = "+2 more", .count = 2, .padding = 5});
        return layout;
    }

    std::optional<Platform::FaceWindow> window;
    std::vector<std::string> asked;
    int moves = 0;
};

TEST_F(FaceWindowTests, opensWhereItIsToldAndTellsOfEachMoveFromThere) {
    EXPECT_EQ(window->place(), std::nullopt) << "not open yet";
    window->standAt({.x = 200, .y = 100});
    show(twoCards());
    EXPECT_TRUE(LoopDriver::runUntil([this] { return window->place().has_value(); }));
    EXPECT_EQ(window->place(), (Platform::WindowPlace{.x = 200, .y = 100}));
    LoopDriver::runPending();
    EXPECT_EQ(moves, 0) << "opening there is no move";
    gtk_window_move(GTK_WINDOW(toplevels().front()), 240, 130);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return moves > 0; }));
    EXPECT_EQ(window->place(), (Platform::WindowPlace{.x = 240, .y = 130}));
}

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

TEST_F(FaceWindowTests, menuEntriesHaveTheirNamesAndDoWhatTheySay) {
    show(twoCards());
    gboolean isHandled = FALSE;
    g_signal_emit_by_name(toplevels().front(), "popup-menu", &isHandled);
    GList* const menus = gtk_menu_get_for_attach_widget(gtk_bin_get_child(GTK_BIN(toplevels().front())));
    ASSERT_NE(menus, nullptr);
    auto* const menu = GTK_WIDGET(menus->data);
    std::vector<std::string> entries;
    for (auto const& entry : TestDisplay::parts(menu, ATK_ROLE_MENU_ITEM)) {
        if (hasState(entry, ATK_STATE_SENSITIVE)) {
            entries.push_back(nameOf(entry));
            TestDisplay::press(entry);
        }
    }
    gtk_menu_popdown(GTK_MENU(menu));
    EXPECT_EQ(entries, (std::vector<std::string>{"Today", "Reload", "Open calendar program", "Quit"}));
    EXPECT_TRUE(LoopDriver::runUntil([this] { return asked.size() >= 4; }));
    EXPECT_EQ(asked, (std::vector<std::string>{"today", "reload", "calendar program", "quit"}));
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
    Ends const ends(old.back());
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
    EXPECT_TRUE(ends.areTold());
    EXPECT_EQ(names().back(), "Sin eventos");
}

TEST_F(FaceWindowTests, sameDayKeepsItsRows) {
    show(twoCards());
    auto const old = children();
    Ends const ends(old.back());
    show(twoCards());
    EXPECT_FALSE(ends.areTold());
    EXPECT_EQ(children().back().get(), old.back().get());
}

TEST_F(FaceWindowTests, rowsOutliveTheWindowAsDefunctOnes) {
    show(twoCards());
    auto const old = children();
    Ends const ends(old.back());
    window.reset();
    EXPECT_TRUE(ends.areTold());
}

TEST_F(FaceWindowTests, screenReaderPressesTheButtons) {
    show(twoCards());
    auto const found = children();
    for (std::size_t index = 0; index < 2; ++index) {
        TestDisplay::press(found[index]);
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

/// Presses a key in the window.
void pressKey(guint key) {
    GdkDisplay* const display = gdk_display_get_default();
    GdkKeymapKey* places = nullptr;
    gint count = 0;
    ASSERT_TRUE(gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(display), key, &places, &count));
    std::unique_ptr<GdkKeymapKey, decltype(&g_free)> const owner(places, g_free);
    std::unique_ptr<GdkEvent, decltype(&gdk_event_free)> const event(gdk_event_new(GDK_KEY_PRESS),
                                                                     gdk_event_free);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(toplevels().front())));
    event->key.keyval = key;
    event->key.hardware_keycode = static_cast<guint16>(places->keycode);
    event->key.group = static_cast<guint8>(places->group);
    gdk_event_set_device(event.get(), gdk_seat_get_keyboard(gdk_display_get_default_seat(display)));
    gtk_main_do_event(event.get());
}

/// No window manager does it here.
void giveKeyboard() {
    gdk_window_focus(gtk_widget_get_window(toplevels().front()), GDK_CURRENT_TIME);
    ASSERT_TRUE(
        LoopDriver::runUntil([] { return gtk_window_is_active(GTK_WINDOW(toplevels().front())) != FALSE; }));
}

std::string focusedName() {
    GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(toplevels().front()));
    return focus == nullptr ? "" : atk_object_get_name(gtk_widget_get_accessible(focus));
}

TEST_F(FaceWindowTests, screenReaderOpensTheMeetOfARow) {
    show(oneOfEachRow());
    auto const found = children();
    ASSERT_EQ(found.size(), 7U);
    for (std::size_t const item : {4U, 5U}) {
        EXPECT_EQ(atk_object_get_role(found[item].get()), ATK_ROLE_LIST_ITEM);
        EXPECT_TRUE(hasState(found[item], ATK_STATE_FOCUSABLE));
        TestDisplay::press(found[item]);
    }
    for (std::size_t const other : {2U, 3U, 6U}) {
        EXPECT_FALSE(hasState(found[other], ATK_STATE_FOCUSABLE)) << nameOf(found[other]);
        EXPECT_FALSE(ATK_IS_ACTION(found[other].get())) << nameOf(found[other]);
    }
    EXPECT_TRUE(LoopDriver::runUntil([&] { return asked.size() == 2; }));
    // By their places in the layout: below the header and the label, and below the space.
    EXPECT_EQ(asked, (std::vector<std::string>{"row 2", "row 4"}));
}

TEST_F(FaceWindowTests, keyboardGoesFromButtonsToRowsAndOpensThem) {
    show(twoCards());
    giveKeyboard();
    EXPECT_EQ(focusedName(), "Previous day");
    pressKey(GDK_KEY_Tab);
    EXPECT_EQ(focusedName(), "Next day");
    pressKey(GDK_KEY_Tab);
    EXPECT_EQ(focusedName(), "Stand-up, 09:00 a.m., 15m");
    pressKey(GDK_KEY_Down);
    EXPECT_EQ(focusedName(), "Dentist, 05:30 p.m., 30m");
    pressKey(GDK_KEY_Return);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return asked.size() == 1; }));
    pressKey(GDK_KEY_Up);
    pressKey(GDK_KEY_space);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return asked.size() == 2; }));
    EXPECT_EQ(asked, (std::vector<std::string>{"row 2", "row 1"}));
    // These stay the day's, wherever the keyboard is.
    pressKey(GDK_KEY_Right);
    EXPECT_EQ(asked.back(), "next");
}

TEST_F(FaceWindowTests, keyboardStaysAtItsPlaceWhenTheDayChanges) {
    show(twoCards());
    giveKeyboard();
    for (int presses = 0; presses < 3; ++presses) {
        pressKey(GDK_KEY_Tab);
    }
    ASSERT_EQ(focusedName(), "Dentist, 05:30 p.m., 30m");
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    for (char const* const name : {"First", "Second", "Third"}) {
        layout.rows.emplace_back(
            SampleFaces::card(layout, name, "09:00 a.m.", "15m", SampleFaces::rgb(0xD1495B)));
    }
    show(layout);
    EXPECT_EQ(focusedName(), "Second, 09:00 a.m., 15m");
    layout.rows.erase(layout.rows.end() - 2, layout.rows.end());
    show(layout);
    EXPECT_EQ(focusedName(), "First, 09:00 a.m., 15m") << "the last that there is";
    show(SampleFaces::empty(WidgetFamily::systemLarge, ColorScheme::light));
    pressKey(GDK_KEY_Return);
    pressKey(GDK_KEY_Tab);
    EXPECT_EQ(focusedName(), "Previous day");
    EXPECT_TRUE(asked.empty());
}

class FaceFadeTests : public FaceWindowTests {
protected:
    static void animate(bool isWanted) {
        g_object_set(gtk_settings_get_default(), "gtk-enable-animations", isWanted ? TRUE : FALSE, nullptr);
    }

    /// Red, green and blue of the middle of the first card as it is drawn just now.
    static std::uint32_t drawnColor() {
        GtkWidget* const face = gtk_bin_get_child(GTK_BIN(toplevels().front()));
        GtkAllocation place;
        gtk_widget_get_allocation(face, &place);
        gtk_widget_size_allocate(face, &place); // Of rows that are new, which the next frame would do.
        std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> const surface(
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 364, 382), cairo_surface_destroy);
        std::unique_ptr<cairo_t, decltype(&cairo_destroy)> const context(cairo_create(surface.get()),
                                                                         cairo_destroy);
        gtk_widget_draw(face, context.get());
        cairo_surface_flush(surface.get());
        auto const* const line =
            cairo_image_surface_get_data(surface.get()) +
            static_cast<std::ptrdiff_t>(52) * cairo_image_surface_get_stride(surface.get());
        std::uint32_t color = 0;
        std::memcpy(&color, line + static_cast<std::ptrdiff_t>(4 * 200), sizeof color);
        return color & 0xFFFFFF;
    }

    static FaceWindowContent withCards() { return {.layout = twoCards(), .tooltips = {}}; }
    static FaceWindowContent emptyTomorrow() {
        auto layout = SampleFaces::empty(WidgetFamily::systemLarge, ColorScheme::light);
        std::get<Platform::HeaderRow>(layout.rows.front()).day = 19;
        return {.layout = std::move(layout), .tooltips = {}};
    }

    static constexpr std::uint32_t white = 0xFFFFFF;
};

TEST_F(FaceFadeTests, anotherDayBeginsAsTheLastAndEndsAsItself) {
    animate(true);
    show(twoCards());
    auto const before = drawnColor();
    ASSERT_NE(before, white);
    window->show(emptyTomorrow());
    EXPECT_EQ(drawnColor(), before);
    EXPECT_TRUE(LoopDriver::runUntil([] { return drawnColor() == white; }));
    window->show(withCards());
    EXPECT_EQ(drawnColor(), white);
    // A third day while the second one comes.
    window->show(emptyTomorrow());
    EXPECT_TRUE(LoopDriver::runUntil([] { return drawnColor() == white; }));
}

TEST_F(FaceFadeTests, whoWantsNoAnimationsSeesTheNewDayAtOnce) {
    animate(false);
    show(twoCards());
    window->show(emptyTomorrow());
    EXPECT_EQ(drawnColor(), white);
    animate(true);
}

TEST_F(FaceFadeTests, theSameDayDoesNotFade) {
    animate(true);
    show(twoCards());
    window->show(
        {.layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light), .tooltips = {}});
    EXPECT_EQ(drawnColor(), white) << "meets that were removed";
}

TEST_F(FaceFadeTests, nothingFadesBeforeTheFirstFrameAndAWindowMayGoWhileItFades) {
    animate(true);
    window->show(withCards());
    window->show(emptyTomorrow());
    window->present();
    EXPECT_EQ(drawnColor(), white);
    show(twoCards());
    window->show(emptyTomorrow());
    window.reset();
    LoopDriver::runPending();
}

} // namespace
