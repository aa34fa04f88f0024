#include "Platform/SessionBus/BusNameState.h"
#include "Tests/Platform/ObjectOnBus.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/SessionBus/BusAtAPath.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Foundation::Environment;
using Platform::busNameState;
using Platform::BusNameState;

constexpr char const* name = "org.example.Service";

Environment on(std::string const& address) {
    return Environment().setting("DBUS_SESSION_BUS_ADDRESS", address);
}

TEST(BusNameStateTests, withoutABusThereIsNone) {
    EXPECT_EQ(busNameState(Environment(), name), BusNameState::noBus);
}

TEST(BusNameStateTests, busThatHasGoneIsUnreachable) {
    BusAtAPath bus;
    EXPECT_EQ(busNameState(on(bus.address()), name), BusNameState::absent);
    bus.end();
    EXPECT_EQ(busNameState(on(bus.address()), name), BusNameState::busUnreachable);
}

TEST(BusNameStateTests, ownerIsSeen) {
    PrivateBus const bus;
    {
        ObjectOnBus const service(
            bus.address(), {.busName = name, .path = "/a", .interfaceName = "org.example.A", .members = ""},
            [](auto, auto*, auto*) {});
        EXPECT_EQ(busNameState(on(bus.address()), name), BusNameState::owned);
    }
    EXPECT_EQ(busNameState(on(bus.address()), name), BusNameState::absent);
}

TEST(BusNameStateTests, serviceThatTheBusCanStartIsNotStarted) {
    auto const folder =
        std::filesystem::path(testing::TempDir()) / ("services-of-a-bus-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "example.service") << "[D-BUS Service]\nName=" << name << "\nExec=/bin/false\n";
    PrivateBus const bus(folder.native());
    EXPECT_EQ(busNameState(on(bus.address()), name), BusNameState::startable);
    EXPECT_EQ(busNameState(on(bus.address()), "org.example.Other"), BusNameState::absent);
    std::filesystem::remove_all(folder);
}

} // namespace
