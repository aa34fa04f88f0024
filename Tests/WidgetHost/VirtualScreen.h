#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Looks at a display and works its keyboard and pointer, as a person would.
class VirtualScreen {
public:
    explicit VirtualScreen(std::string const& display);
    VirtualScreen(VirtualScreen const&) = delete;
    VirtualScreen& operator=(VirtualScreen const&) = delete;
    ~VirtualScreen();

    struct Picture {
        int width;
        int height;
        std::vector<std::uint32_t> pixels; ///< 0xRRGGBB, row by row.

        [[nodiscard]] std::uint32_t at(int x, int y) const {
            return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                          static_cast<std::size_t>(x)];
        }
        /// How many pixels have exactly this colour.
        [[nodiscard]] int count(std::uint32_t color) const;

        bool operator==(Picture const&) const = default;
    };

    /// What the window of this title shows; absent while there is none.
    [[nodiscard]] std::optional<Picture> picture(std::string const& title) const;

    /// The window's picture as soon as `condition` holds for it; absent if it does not within 20 seconds.
    [[nodiscard]] std::optional<Picture>
    pictureWhen(std::string const& title, std::function<bool(Picture const&)> const& condition) const;

    /// Gives the window the keyboard, then presses and releases a key, named as X names it ("Right"), with a
    /// modifier if one is named.
    void press(std::string const& title, char const* key, char const* modifier = nullptr) const;

    /// Moves the pointer to a place in the window.
    void pointAt(std::string const& title, int x, int y) const;

    void click(unsigned button = 1) const;

    /// Moves the pointer so far with its first button held down.
    void drag(int x, int y) const;

    /// Drags, right and down by a little at a time, until the window of this title has left its place by that
    /// much, and waits until it stands where the pointer let go of it; whether it does.
    [[nodiscard]] bool dragAway(std::string const& title, int distance) const;

    /// How many windows can be seen.
    [[nodiscard]] std::size_t windowCount() const;

    /// Where the window of this title stands.
    [[nodiscard]] std::pair<int, int> origin(std::string const& title) const;

private:
    struct Connection;
    std::unique_ptr<Connection> connection;
};
