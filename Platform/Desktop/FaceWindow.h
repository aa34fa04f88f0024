#pragma once

#include "Platform/Desktop/WindowPlace.h"
#include "Platform/Desktop/WindowPlacement.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/Face/FacePainter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// The window's own words.
struct FaceWindowTexts {
    std::string title;
    std::string today;
    std::string size;
    std::string small;
    std::string medium;
    std::string large;
    std::string reload;
    std::string calendarProgram;
    std::string quit;
};

/// What a person can ask of the window. All are called on the main loop's thread.
struct FaceWindowActions {
    std::function<void()> previousDay;
    std::function<void()> nextDay;
    std::function<void()> today;
    std::function<void()> reload;
    std::function<void()> openCalendarProgram;
    std::function<void()> quit;
    std::function<void(WidgetFamily)> chooseFamily;
    std::function<void(std::size_t row)>
        openRow;                 ///< Of an all-day row or a card, by its place in the layout.
    std::function<void()> moved; ///< Since it opened the window has come to stand elsewhere; often in a drag.
};

/// What the window shows.
struct FaceWindowContent {
    FaceLayout layout;
    std::vector<std::string> tooltips; ///< One for each row of the layout; an empty one is not shown.
};

/// The window with the face, its two buttons, its rows and its menu. The display has to be open.
class FaceWindow final {
public:
    FaceWindow(WindowPlacement placement, FaceWindowTexts const& texts, FaceWindowActions actions);
    FaceWindow(FaceWindow const&) = delete;
    FaceWindow& operator=(FaceWindow const&) = delete;
    ~FaceWindow();

    /// Shows `content` from the next frame on; the window takes its size.
    void show(FaceWindowContent content);

    /// Lets the window open there, or as near as it is wholly on a screen. Has an effect before it is first
    /// presented, and where a program can place its windows: Wayland compositors do that themselves.
    void standAt(WindowPlace place);

    /// Where it stands; absent while it is not open, and where a program cannot know.
    [[nodiscard]] std::optional<WindowPlace> place() const;

    /// Opens the window, or brings it before the person where it stands among others.
    void present();

    void setAccent(std::optional<SRGBColor> accent);

    /// What the person has to know beside the face, which only gets a mark: the first line of the menu, the
    /// tooltip where no row has one of its own, and what a screen reader tells of the whole. Empty for
    /// nothing.
    void setNotice(std::string text);

    /// Calls `painted` once, after the next frame that shows what was last given to show().
    void afterNextFrame(std::function<void()> painted);

private:
    class Widgets;
    std::unique_ptr<Widgets> widgets;
};

} // namespace Platform
