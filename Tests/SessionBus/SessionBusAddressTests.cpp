#include "Platform/SessionBus/SessionBusAddress.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using Foundation::Environment;
using Platform::sessionBusAddress;

class SessionBusAddressTests : public testing::Test {
protected:
    SessionBusAddressTests() {
        std::string pattern = testing::TempDir() + "bus-address-XXXXXX";
        folder = mkdtemp(pattern.data());
    }
    ~SessionBusAddressTests() override { std::filesystem::remove_all(folder); }

    static void makeSocket(std::filesystem::path const& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        ASSERT_LT(path.native().size(), sizeof address.sun_path);
        path.native().copy(static_cast<char*>(address.sun_path), path.native().size());
        int const descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0); // NOLINT
        close(descriptor);
    }

    std::filesystem::path folder;
};

TEST_F(SessionBusAddressTests, variableWins) {
    makeSocket(folder / "bus");
    auto const environment = Environment().setting("XDG_RUNTIME_DIR", folder.native());
    EXPECT_EQ(sessionBusAddress(environment.setting("DBUS_SESSION_BUS_ADDRESS", "unix:path=/a")),
              "unix:path=/a");
    EXPECT_EQ(sessionBusAddress(environment.setting("DBUS_SESSION_BUS_ADDRESS", "")),
              "unix:path=" + (folder / "bus").native());
}

TEST_F(SessionBusAddressTests, onlyASocketOfTheUsersIsABus) {
    EXPECT_EQ(sessionBusAddress(Environment()), std::nullopt);
    EXPECT_EQ(sessionBusAddress(Environment().setting("XDG_RUNTIME_DIR", folder.native())), std::nullopt);
    std::filesystem::create_directory(folder / "bus");
    EXPECT_EQ(sessionBusAddress(Environment().setting("XDG_RUNTIME_DIR", folder.native())), std::nullopt);
    EXPECT_EQ(sessionBusAddress(Environment().setting("XDG_RUNTIME_DIR", "relative")), std::nullopt);
}

TEST_F(SessionBusAddressTests, whatAnAddressCannotHoldIsEscaped) {
    auto const odd = folder / "a b,é%";
    std::filesystem::create_directory(odd);
    makeSocket(odd / "bus");
    EXPECT_EQ(sessionBusAddress(Environment().setting("XDG_RUNTIME_DIR", odd.native())),
              "unix:path=" + folder.native() + "/a%20b%2c%c3%a9%25/bus");
}

} // namespace
