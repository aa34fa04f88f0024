#include "LoopDriver.h"
#include "TestDisplay.h"

#include "Platform/Desktop/DetailDialog.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <string>
#include <vector>

// The window that tells of one meet, on a display of the test's own.
namespace {

using Platform::ColorScheme;
using TestDisplay::nameOf;
using TestDisplay::toplevels;

class DetailDialogTests : public testing::Test {
protected:
    void SetUp() override { TestDisplay::open(); }

    static Platform::DetailPage review() {
        return {
            .title = "Design <b>review</b> & more",
            .lines = {"Wednesday, all day", "_Room_ 4 %s"},
            .links = {{.title = "Open _example.com", .target = {.absoluteString = "https://example.com/a"}},
                      {.title = "Open example.org", .target = {.absoluteString = "https://example.org"}}}};
    }

    static std::vector<std::string> names(AtkRole role) {
        std::vector<std::string> found;
        for (auto const& part : TestDisplay::parts(toplevels().front(), role)) {
            found.push_back(nameOf(part));
        }
        return found;
    }

    static bool isShown() {
        return LoopDriver::runUntil(
            [] { return toplevels().size() == 1 && gtk_widget_get_mapped(toplevels().front()) != FALSE; });
    }

    static int height() {
        int shown = 0;
        gtk_window_get_size(GTK_WINDOW(toplevels().front()), nullptr, &shown);
        return shown;
    }

    std::vector<std::string> opened;
    Platform::DetailDialog dialog{
        {.close = "_Close"}, [this](Foundation::URL const& link) { opened.push_back(link.absoluteString); }};
};

TEST_F(DetailDialogTests, screenReaderFindsTheTextsAsTheyStandAndTheLinks) {
    dialog.show(review(), ColorScheme::light);
    ASSERT_TRUE(isShown());
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(toplevels().front())), "Design <b>review</b> & more");
    EXPECT_EQ(atk_object_get_role(gtk_widget_get_accessible(toplevels().front())), ATK_ROLE_DIALOG);
    EXPECT_EQ(names(ATK_ROLE_LABEL),
              (std::vector<std::string>{"Design <b>review</b> & more", "Wednesday, all day", "_Room_ 4 %s"}));
    EXPECT_EQ(names(ATK_ROLE_PUSH_BUTTON),
              (std::vector<std::string>{"Open _example.com", "Open example.org", "Close"}));
}

TEST_F(DetailDialogTests, aLinkIsOpenedWhenItsButtonIsPressedAndNotBefore) {
    dialog.show(review(), ColorScheme::light);
    ASSERT_TRUE(isShown());
    EXPECT_TRUE(opened.empty());
    TestDisplay::press(TestDisplay::parts(toplevels().front(), ATK_ROLE_PUSH_BUTTON)[1]);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return !opened.empty(); }));
    EXPECT_EQ(opened, std::vector<std::string>{"https://example.org"});
}

TEST_F(DetailDialogTests, theKeyboardIsOnCloseAndNotOnALink) {
    dialog.show(review(), ColorScheme::light);
    ASSERT_TRUE(isShown());
    GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(toplevels().front()));
    ASSERT_NE(focus, nullptr);
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(focus)), "Close");
}

TEST_F(DetailDialogTests, escapeCloseAndTheWindowManagerCloseIt) {
    for (int const way : {0, 1, 2}) {
        SCOPED_TRACE(way);
        dialog.show(review(), ColorScheme::dark);
        ASSERT_TRUE(isShown());
        GtkWidget* const window = toplevels().front();
        switch (way) {
        case 0: g_signal_emit_by_name(window, "close"); break; // What Escape is bound to.
        case 1: TestDisplay::press(TestDisplay::parts(window, ATK_ROLE_PUSH_BUTTON).back()); break;
        default: gtk_window_close(GTK_WINDOW(window));
        }
        EXPECT_TRUE(LoopDriver::runUntil([] { return toplevels().empty(); }));
    }
    EXPECT_TRUE(opened.empty());
}

TEST_F(DetailDialogTests, thereIsOnePageAtATime) {
    dialog.show(review(), ColorScheme::light);
    dialog.show({.title = "Dentist", .lines = {}, .links = {}}, ColorScheme::light);
    ASSERT_TRUE(isShown());
    EXPECT_EQ(names(ATK_ROLE_LABEL), std::vector<std::string>{"Dentist"});
}

TEST_F(DetailDialogTests, whatWentWrongStandsBelowThePage) {
    dialog.tell("nobody hears this");
    dialog.show({.title = "Dentist", .lines = {}, .links = {}}, ColorScheme::light);
    dialog.tell("The link was not opened: there is no browser");
    ASSERT_TRUE(isShown());
    EXPECT_EQ(names(ATK_ROLE_LABEL),
              (std::vector<std::string>{"Dentist", "The link was not opened: there is no browser"}));
}

TEST_F(DetailDialogTests, longTextsBreakAndWhatIsTooHighScrolls) {
    dialog.show({.title = std::string(500, 'x'), .lines = {}, .links = {}}, ColorScheme::light);
    ASSERT_TRUE(isShown());
    int width = 0;
    gtk_window_get_size(GTK_WINDOW(toplevels().front()), &width, nullptr);
    EXPECT_LT(width, 640);
    EXPECT_GT(height(), 100);
    dialog.show({.title = std::string(500, 'x'), .lines = std::vector(5, std::string(500, 'y')), .links = {}},
                ColorScheme::light);
    ASSERT_TRUE(isShown());
    EXPECT_LT(height(), 640);
}

TEST_F(DetailDialogTests, itIsDrawnInTheSchemeOfTheFace) {
    auto const isDark = [] {
        gboolean preferred = FALSE;
        g_object_get(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", &preferred, nullptr);
        return preferred != FALSE;
    };
    dialog.show(review(), ColorScheme::dark);
    EXPECT_TRUE(isDark());
    dialog.show(review(), ColorScheme::light);
    EXPECT_FALSE(isDark());
}

TEST_F(DetailDialogTests, itGoesWithItsOwner) {
    {
        Platform::DetailDialog shortLived{{.close = "_Close"}, [](Foundation::URL const&) {}};
        shortLived.show(review(), ColorScheme::light);
        EXPECT_EQ(toplevels().size(), 1U);
    }
    EXPECT_TRUE(toplevels().empty());
}

} // namespace
