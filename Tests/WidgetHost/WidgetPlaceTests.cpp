#include "WidgetProgramFixture.h"

#include <csignal>
#include <filesystem>
#include <string>
#include <utility>

// The size and the place that the program remembers from one run to the next.
namespace {

class WidgetPlaceTests : public WidgetProgramTests {
protected:
    using Place = std::pair<int, int>;

    static std::string placeMember(Place place) {
        return R"("place":{"x":)" + std::to_string(place.first) + R"(,"y":)" + std::to_string(place.second) +
               "}";
    }
    [[nodiscard]] std::filesystem::path stateFile() const { return home / "state/quillora/widget.json"; }
    void remember(std::string const& members) const {
        std::filesystem::create_directories(stateFile().parent_path());
        write(stateFile(), R"({"version":1,)" + members + "}");
    }
    [[nodiscard]] bool isRemembered(std::string const& members) const {
        return screen
            .pictureWhen(
                title,
                [&](auto const&) { return readFile(stateFile()) == R"({"version":1,)" + members + "}"; })
            .has_value();
    }
    [[nodiscard]] bool hasWidth(int width) const {
        return screen.pictureWhen(title, [&](auto const& shown) { return shown.width == width; }).has_value();
    }
    [[nodiscard]] bool standsAt(Place place) const {
        return screen.pictureWhen(title, [&](auto const&) { return screen.origin(title) == place; })
            .has_value();
    }
    /// Drags the window by its empty middle, and yields where it came to stand once that is settled.
    Place drag(int distance) const {
        screen.pointAt(title, 85, 150);
        EXPECT_TRUE(screen.dragAway(title, distance));
        return screen.origin(title);
    }
    void quit() const {
        screen.press(title, "q", "Control_L");
        EXPECT_EQ(widget->wait(), 0);
    }
};

TEST_F(WidgetPlaceTests, theWindowOpensWhereItWasLeft) {
    open({"--family", "small"});
    auto const place = drag(200);
    EXPECT_TRUE(isRemembered(placeMember(place))) << "the option is of this run only";
    widget->signal(SIGKILL);
    widget->wait();
    open({"--family", "small"});
    EXPECT_TRUE(standsAt(place));
    EXPECT_EQ(std::filesystem::status(stateFile()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(WidgetPlaceTests, aMoveJustBeforeTheEndIsRememberedToo) {
    for (bool const isTerminated : {true, false}) {
        open({"--family", "small"});
        auto const place = drag(isTerminated ? 60 : 100);
        if (isTerminated) {
            widget->signal(SIGTERM);
            EXPECT_EQ(widget->wait(), 0);
        } else {
            quit();
        }
        EXPECT_EQ(readFile(stateFile()), R"({"version":1,)" + placeMember(place) + "}");
    }
}

TEST_F(WidgetPlaceTests, aPlaceThatIsOffScreenIsBroughtBackForTheTimeBeing) {
    remember(R"("family":"medium",)" + placeMember({5000, -300}));
    auto const asItWas = readFile(stateFile());
    open({});
    EXPECT_TRUE(hasWidth(364));
    EXPECT_TRUE(standsAt({1280 - 364, 0}));
    quit();
    // The screen on which it stood may be there again next time.
    EXPECT_EQ(readFile(stateFile()), asItWas);
}

TEST_F(WidgetPlaceTests, theChosenSizeIsRememberedAndAnOptionWins) {
    open({});
    EXPECT_TRUE(hasWidth(364));
    screen.press(title, "F10", "Shift_L");
    ASSERT_TRUE(screen.pictureWhen(title, [&](auto const&) { return screen.windowCount() > 1; }).has_value());
    // "Today", "Size", into it, "Small" is its first.
    for (char const* const key : {"Down", "Down", "Right", "Return"}) {
        screen.press(title, key);
    }
    EXPECT_TRUE(hasWidth(170));
    EXPECT_TRUE(isRemembered(R"("family":"small")"));
    quit();
    open({});
    EXPECT_TRUE(hasWidth(170));
    quit();
    open({"--family", "medium"});
    EXPECT_TRUE(hasWidth(364));
    quit();
    EXPECT_EQ(readFile(stateFile()), R"({"version":1,"family":"small"})");
}

TEST_F(WidgetPlaceTests, aPictureOfAnotherMomentNeitherReadsNorWritesIt) {
    remember(R"("family":"small",)" + placeMember({300, 200}));
    auto const asItWas = readFile(stateFile());
    open();
    ASSERT_TRUE(showsWednesday());
    EXPECT_TRUE(hasWidth(364));
    EXPECT_TRUE(standsAt({0, 0}));
    drag(60);
    quit();
    EXPECT_EQ(readFile(stateFile()), asItWas);
}

TEST_F(WidgetPlaceTests, damagedStateIsAsNone) {
    std::filesystem::create_directories(stateFile().parent_path());
    for (std::string const content : {"", "{}", "\xFF\xFE", R"({"version":7,"family":"small"})"}) {
        SCOPED_TRACE(content);
        write(stateFile(), content);
        open({});
        EXPECT_TRUE(hasWidth(364));
        EXPECT_TRUE(standsAt({0, 0}));
        quit();
        EXPECT_EQ(readFile(stateFile()), content);
    }
}

TEST_F(WidgetPlaceTests, aStateFolderThatCannotBeWrittenKeepsNothingFromWorking) {
    std::ofstream(home / "state") << "a file";
    open({"--family", "small"});
    drag(200);
    quit();
    EXPECT_EQ(readFile(home / "state"), "a file");
}

} // namespace
