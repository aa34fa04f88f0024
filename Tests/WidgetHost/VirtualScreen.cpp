#include "VirtualScreen.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace {

/// Windows vanish while they are looked at; that is no error here.
int ignoreError(Display*, XErrorEvent*) {
    return 0;
}

} // namespace

struct VirtualScreen::Connection {
    Display* display;

    /// Those that can be seen.
    [[nodiscard]] std::vector<Window> windows() const {
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count) == 0) {
            return {};
        }
        std::vector<Window> found(children, children + count);
        if (children != nullptr) {
            XFree(children);
        }
        std::erase_if(found, [this](Window window) {
            XWindowAttributes attributes{};
            return XGetWindowAttributes(display, window, &attributes) == 0 ||
                   attributes.map_state != IsViewable;
        });
        return found;
    }

    /// 0 while there is none that can be seen.
    [[nodiscard]] Window window(std::string const& title) const {
        Window found = 0;
        for (auto const window : windows()) {
            char* name = nullptr;
            if (XFetchName(display, window, &name) != 0 && name != nullptr) {
                if (name == title) {
                    found = window;
                }
                XFree(name);
            }
        }
        return found;
    }

    void key(char const* name, bool isDown) const {
        auto const code = XKeysymToKeycode(display, XStringToKeysym(name));
        XTestFakeKeyEvent(display, code, isDown ? True : False, CurrentTime);
    }
};

VirtualScreen::VirtualScreen(std::string const& display)
    : connection(std::make_unique<Connection>(XOpenDisplay(display.c_str()))) {
    if (connection->display == nullptr) {
        throw std::runtime_error("no display " + display);
    }
    XSetErrorHandler(ignoreError);
}

VirtualScreen::~VirtualScreen() {
    XCloseDisplay(connection->display);
}

int VirtualScreen::Picture::count(std::uint32_t color) const {
    return static_cast<int>(std::ranges::count(pixels, color));
}

std::optional<VirtualScreen::Picture> VirtualScreen::picture(std::string const& title) const {
    auto const window = connection->window(title);
    XWindowAttributes attributes{};
    if (window == 0 || XGetWindowAttributes(connection->display, window, &attributes) == 0) {
        return std::nullopt;
    }
    XImage* const image =
        XGetImage(connection->display, window, 0, 0, static_cast<unsigned>(attributes.width),
                  static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr) {
        return std::nullopt;
    }
    Picture picture{.width = attributes.width, .height = attributes.height, .pixels = {}};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            picture.pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image, x, y) & 0xFFFFFF));
        }
    }
    XDestroyImage(image);
    return picture;
}

std::optional<VirtualScreen::Picture>
VirtualScreen::pictureWhen(std::string const& title,
                           std::function<bool(Picture const&)> const& condition) const {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < deadline) {
        auto const shown = picture(title);
        if (shown && condition(*shown)) {
            return shown;
        }
        // Another process paints; nothing here can wait for it but looking again a little later.
        poll(nullptr, 0, 5);
    }
    return std::nullopt;
}

void VirtualScreen::press(std::string const& title, char const* key, char const* modifier) const {
    XSetInputFocus(connection->display, connection->window(title), RevertToParent, CurrentTime);
    if (modifier != nullptr) {
        connection->key(modifier, true);
    }
    connection->key(key, true);
    connection->key(key, false);
    if (modifier != nullptr) {
        connection->key(modifier, false);
    }
    XSync(connection->display, False);
}

void VirtualScreen::pointAt(std::string const& title, int x, int y) const {
    Window child = 0;
    int rootX = 0;
    int rootY = 0;
    XTranslateCoordinates(connection->display, connection->window(title),
                          DefaultRootWindow(connection->display), x, y, &rootX, &rootY, &child);
    XTestFakeMotionEvent(connection->display, -1, rootX, rootY, CurrentTime);
    XSync(connection->display, False);
}

void VirtualScreen::click(unsigned button) const {
    XTestFakeButtonEvent(connection->display, button, True, CurrentTime);
    XTestFakeButtonEvent(connection->display, button, False, CurrentTime);
    XSync(connection->display, False);
}

void VirtualScreen::drag(int x, int y) const {
    constexpr int steps = 20;
    XTestFakeButtonEvent(connection->display, 1, True, CurrentTime);
    for (int step = 0; step < steps; ++step) {
        XTestFakeRelativeMotionEvent(connection->display, x / steps, y / steps, CurrentTime);
    }
    XTestFakeButtonEvent(connection->display, 1, False, CurrentTime);
    XSync(connection->display, False);
}

bool VirtualScreen::dragAway(std::string const& title, int distance) const {
    auto const before = origin(title);
    XTestFakeButtonEvent(connection->display, 1, True, CurrentTime);
    auto expected = before;
    // The window follows only once its program has seen that this is a drag.
    auto const hasMoved = pictureWhen(title, [&](auto const&) {
        XTestFakeRelativeMotionEvent(connection->display, 3, 2, CurrentTime);
        XSync(connection->display, False);
        expected = {expected.first + 3, expected.second + 2};
        return origin(title).first >= before.first + distance;
    });
    XTestFakeButtonEvent(connection->display, 1, False, CurrentTime);
    XSync(connection->display, False);
    return hasMoved && pictureWhen(title, [&](auto const&) { return origin(title) == expected; });
}

std::pair<int, int> VirtualScreen::origin(std::string const& title) const {
    Window child = 0;
    int x = 0;
    int y = 0;
    XTranslateCoordinates(connection->display, connection->window(title),
                          DefaultRootWindow(connection->display), 0, 0, &x, &y, &child);
    return {x, y};
}

std::size_t VirtualScreen::windowCount() const {
    return connection->windows().size();
}
