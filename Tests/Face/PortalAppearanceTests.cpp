#include "Platform/Appearance/FixedAppearance.h"
#include "Platform/Appearance/PortalAppearance.h"
#include "Platform/Appearance/PortalAppearanceWatch.h"
#include "Tests/Face/StubPortal.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Platform::ColorScheme;
using Platform::PortalAppearance;
using Platform::PortalAppearanceWatch;

/// A session bus that only this test knows.
class PrivateBus {
public:
    PrivateBus() : bus(g_test_dbus_new(G_TEST_DBUS_NONE)) { g_test_dbus_up(bus); }
    PrivateBus(PrivateBus const&) = delete;
    PrivateBus& operator=(PrivateBus const&) = delete;
    ~PrivateBus() {
        g_test_dbus_down(bus);
        g_object_unref(bus);
    }

    [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(bus); }

private:
    GTestDBus* bus;
};

/// A socket that lets one connect and then never says a word.
class MuteSocket {
public:
    MuteSocket()
        : path("/tmp/quillora-mute-" + std::to_string(getpid())),
          descriptor(socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        bind(descriptor, reinterpret_cast<sockaddr const*>(&address), sizeof address);
        listen(descriptor, 1);
    }
    MuteSocket(MuteSocket const&) = delete;
    MuteSocket& operator=(MuteSocket const&) = delete;
    ~MuteSocket() {
        close(descriptor);
        std::filesystem::remove(path);
    }

    [[nodiscard]] std::string address() const { return "unix:path=" + path; }

private:
    std::string path;
    int descriptor;
};

/// Serves the default main context until `condition` holds, which is asked at least every ten milliseconds;
/// yields whether it did within `ticks` of these.
template <typename Condition>
bool runUntil(Condition condition, int ticks = 1000) {
    auto const timer = g_timeout_add(
        10,
        [](gpointer left) -> gboolean {
            --*static_cast<int*>(left);
            return G_SOURCE_CONTINUE;
        },
        &ticks);
    bool holds = condition();
    while (!holds && ticks > 0) {
        g_main_context_iteration(nullptr, TRUE);
        holds = condition();
    }
    g_source_remove(timer);
    return holds;
}

/// A watch connects in the background and hears nothing before: announces a change until `count` grows, one
/// announcement at a time, and leaves it at 0 with none on its way.
bool connects(StubPortal& portal, int& count) {
    runUntil([] { return false; }, 5);
    for (int attempt = 0; attempt < 10 && count == 0; ++attempt) {
        portal.announce("org.freedesktop.appearance", "color-scheme");
        runUntil([&] { return count > 0; }, 100);
    }
    return std::exchange(count, 0) > 0;
}

/// Milliseconds that a piece of work took.
template <typename Work>
long long duration(Work work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

/// Generous: machines under load keep threads waiting.
constexpr long long soonEnough = 2000;

TEST(PortalAppearanceTests, schemeIsUnwrappedHoweverDeepItLies) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    PortalAppearance const appearance(bus.address());

    struct Row {
        char const* value;
        std::optional<ColorScheme> expected;
    };
    for (auto const& [value, expected] : {
             Row{"uint32 1", ColorScheme::dark},
             Row{"<uint32 1>", ColorScheme::dark},
             Row{"<<uint32 1>>", ColorScheme::dark},
             Row{"uint32 2", ColorScheme::light},
             Row{"uint32 0", ColorScheme::light},
             Row{"uint32 7", ColorScheme::light},
             Row{"'dark'", std::nullopt},
             Row{"<int32 1>", std::nullopt},
         }) {
        portal.set("color-scheme", value);
        EXPECT_EQ(appearance.colorScheme(), expected) << value;
    }
}

TEST(PortalAppearanceTests, everyReadAsksAnew) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    PortalAppearance const appearance(bus.address());
    portal.set("color-scheme", "<uint32 2>");
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::light);
    portal.set("color-scheme", "<uint32 1>");
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
    EXPECT_EQ(portal.reads(), 2);
}

TEST(PortalAppearanceTests, accentIsTheThreeChannels) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    portal.set("accent-color", "<(0.25, 0.5, 1.0)>");
    std::array<double, 3> const expected{0.25, 0.5, 1.0};
    EXPECT_EQ(PortalAppearance(bus.address()).accentColor(), expected);
}

TEST(PortalAppearanceTests, accentOutsideTheRangeMeansNone) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    PortalAppearance const appearance(bus.address());
    for (char const* value : {"<(-1.0, -1.0, -1.0)>", "<(0.0, 0.0, 1.5)>", "<'blue'>", "<(0.0, 0.0)>"}) {
        portal.set("accent-color", value);
        EXPECT_EQ(appearance.accentColor(), std::nullopt) << value;
    }
}

TEST(PortalAppearanceTests, fontIsThatOfTheDesktopsInterface) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    PortalAppearance const appearance(bus.address());
    portal.set("font-name", "<'Wrong 10'>");
    EXPECT_EQ(appearance.interfaceFont(), std::nullopt);
    for (auto const& [value, expected] :
         std::vector<std::pair<char const*, std::optional<std::string>>>{{"<'Cantarell 11'>", "Cantarell 11"},
                                                                         {"<<'Inter 10'>>", "Inter 10"},
                                                                         {"<''>", std::nullopt},
                                                                         {"<uint32 11>", std::nullopt}}) {
        portal.set("org.gnome.desktop.interface font-name", value);
        EXPECT_EQ(appearance.interfaceFont(), expected) << value;
    }
}

TEST(PortalAppearanceTests, settingThatThePortalLacksIsAbsent) {
    PrivateBus const bus;
    StubPortal const portal(bus.address());
    PortalAppearance const appearance(bus.address());
    EXPECT_EQ(appearance.colorScheme(), std::nullopt);
    EXPECT_EQ(appearance.accentColor(), std::nullopt);
}

TEST(PortalAppearanceTests, busWithoutAPortalIsAbsent) {
    PrivateBus const bus;
    EXPECT_EQ(PortalAppearance(bus.address()).colorScheme(), std::nullopt);
}

TEST(PortalAppearanceTests, withoutABusNothingIsAsked) {
    EXPECT_EQ(PortalAppearance(std::nullopt).colorScheme(), std::nullopt);
    EXPECT_EQ(PortalAppearance("unix:path=/nonexistent/bus").colorScheme(), std::nullopt);
    EXPECT_EQ(PortalAppearance("no address at all").accentColor(), std::nullopt);
}

TEST(PortalAppearanceTests, silentPortalIsGivenUpOn) {
    PrivateBus const bus;
    StubPortal const portal(bus.address(), StubPortal::Manner::staysSilent);
    PortalAppearance const appearance(bus.address());
    auto const taken = duration([&] { EXPECT_EQ(appearance.colorScheme(), std::nullopt); });
    EXPECT_GE(taken, 200);
    EXPECT_LT(taken, soonEnough);
}

TEST(PortalAppearanceTests, silentBusIsGivenUpOn) {
    MuteSocket const socket;
    PortalAppearance const appearance(socket.address());
    auto const taken = duration([&] { EXPECT_EQ(appearance.colorScheme(), std::nullopt); });
    EXPECT_GE(taken, 200);
    EXPECT_LT(taken, soonEnough);
}

TEST(PortalAppearanceTests, portalThatComesLaterIsHeard) {
    PrivateBus const bus;
    PortalAppearance const appearance(bus.address());
    EXPECT_EQ(appearance.colorScheme(), std::nullopt);
    StubPortal portal(bus.address());
    portal.set("color-scheme", "<uint32 1>");
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
}

TEST(PortalAppearanceWatchTests, changeOfTheAppearanceIsToldOnce) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    int changes = 0;
    PortalAppearanceWatch const watch(bus.address(), [&] { ++changes; });
    ASSERT_TRUE(connects(portal, changes));
    portal.announce("org.freedesktop.appearance", "accent-color");
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
    EXPECT_FALSE(runUntil([&] { return changes > 1; }, 10));
}

TEST(PortalAppearanceWatchTests, changeOfAnotherSettingIsNotTold) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    int changes = 0;
    PortalAppearanceWatch const watch(bus.address(), [&] { ++changes; });
    ASSERT_TRUE(connects(portal, changes));
    for (int count = 0; count < 5; ++count)
        portal.announce("org.gnome.desktop.interface", "font-name");
    portal.announce("org.freedesktop.appearance", "color-scheme");
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
    EXPECT_FALSE(runUntil([&] { return changes > 1; }, 10));
}

TEST(PortalAppearanceWatchTests, portalThatComesIsTold) {
    PrivateBus const bus;
    int changes = 0;
    PortalAppearanceWatch const watch(bus.address(), [&] { ++changes; });
    for (int attempt = 0; attempt < 10 && changes == 0; ++attempt) {
        StubPortal const portal(bus.address());
        runUntil([&] { return changes > 0; }, 20);
    }
    EXPECT_GT(changes, 0);
}

TEST(PortalAppearanceWatchTests, watchThatHasGoneTellsNothing) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    int gone = 0;
    int stays = 0;
    auto watch = std::make_unique<PortalAppearanceWatch>(bus.address(), [&] { ++gone; });
    PortalAppearanceWatch const other(bus.address(), [&] { ++stays; });
    ASSERT_TRUE(connects(portal, gone));
    ASSERT_TRUE(connects(portal, stays));
    watch.reset();
    gone = 0;
    portal.announce("org.freedesktop.appearance", "color-scheme");
    ASSERT_TRUE(runUntil([&] { return stays > 0; }));
    EXPECT_FALSE(runUntil([&] { return gone > 0; }, 10));
}

TEST(PortalAppearanceWatchTests, watchMayGoWhileItConnects) {
    PrivateBus const bus;
    StubPortal portal(bus.address());
    int gone = 0;
    std::make_unique<PortalAppearanceWatch>(bus.address(), [&] { ++gone; }).reset();
    int stays = 0;
    PortalAppearanceWatch const other(bus.address(), [&] { ++stays; });
    ASSERT_TRUE(connects(portal, stays));
    EXPECT_EQ(gone, 0);
}

TEST(PortalAppearanceWatchTests, withoutABusThereIsNothingToTell) {
    int changes = 0;
    PortalAppearanceWatch const watch(std::nullopt, [&] { ++changes; });
    EXPECT_FALSE(runUntil([&] { return changes > 0; }, 1));
}

TEST(FixedAppearanceTests, saysWhatItWasTold) {
    Platform::FixedAppearance appearance;
    EXPECT_EQ(appearance.colorScheme(), std::nullopt);
    appearance.set(ColorScheme::dark);
    EXPECT_EQ(appearance.colorScheme(), ColorScheme::dark);
}

} // namespace
