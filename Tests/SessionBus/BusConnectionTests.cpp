#include "Platform/Appearance/PortalAppearance.h"
#include "Platform/SessionBus/BusConnection.h"
#include "Tests/Platform/ObjectOnBus.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/SessionBus/BusAtAPath.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

namespace {

using namespace std::chrono_literals;
using Platform::BusConnection;
using Platform::BusMethod;
using Platform::BusValue;
using Clock = std::chrono::steady_clock;

// Long enough for a machine under load; nothing waits for its end but the tests of just that.
BusConnection::Deadline generous() {
    return Clock::now() + 30s;
}

/// Answers `Parsed` with the value that its argument describes in GVariant's text form, and `Silence` never.
class Parrot {
public:
    explicit Parrot(std::string const& address)
        : object(
              address,
              {.busName = "org.example.Parrot",
               .path = "/parrot",
               .interfaceName = "org.example.Parrot",
               .members =
                   R"(<method name='Parsed'><arg type='s' direction='in'/><arg type='v' direction='out'/></method>
                                <method name='Silence'/><method name='Nothing'/>)"},
              answer) {}

private:
    static void answer(std::string_view method, GVariant* arguments, GDBusMethodInvocation* invocation) {
        if (method == "Silence") return g_object_unref(invocation);
        if (method == "Nothing") return g_dbus_method_invocation_return_value(invocation, nullptr);
        char const* text = nullptr;
        g_variant_get(arguments, "(&s)", &text);
        auto* const parsed = g_variant_parse(nullptr, text, nullptr, nullptr, nullptr);
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", parsed));
        g_variant_unref(parsed);
    }

    ObjectOnBus object;
};

BusMethod parrots(char const* method) {
    return {.owner = "org.example.Parrot",
            .objectPath = "/parrot",
            .interface = "org.example.Parrot",
            .name = method};
}

BusValue list(std::vector<BusValue> values) {
    return {std::move(values)};
}

TEST(BusConnectionTests, everyKindOfValueIsRead) {
    PrivateBus const bus;
    Parrot const parrot(bus.address());
    auto connection = BusConnection::open(bus.address(), generous());
    ASSERT_TRUE(connection.has_value());
    struct Row {
        char const* text;
        BusValue expected;
    };
    for (auto const& [text, expected] : std::vector<Row>{
             {"true", {true}},
             {"byte 0xff", {std::uint64_t{255}}},
             {"uint16 65535", {std::uint64_t{65535}}},
             {"uint32 4294967295", {std::uint64_t{4294967295}}},
             {"uint64 18446744073709551615", {std::uint64_t{18446744073709551615U}}},
             {"int16 -32768", {std::int64_t{-32768}}},
             {"int32 -1", {std::int64_t{-1}}},
             {"int64 -9223372036854775808", {INT64_MIN}},
             {"0.25", {0.25}},
             {"'grüß'", {std::string("grüß")}},
             {"objectpath '/a/b'", {std::string("/a/b")}},
             {"signature 'a{sv}'", {std::string("a{sv}")}},
             {"<<uint32 1>>", {std::uint64_t{1}}},
             {"@as []", list({})},
             {"['a', 'b']", list({{std::string("a")}, {std::string("b")}})},
             {"(0.5, true)", list({{0.5}, {true}})},
             {"{'k': <int32 7>}", list({list({{std::string("k")}, {std::int64_t{7}}})})},
         }) {
        auto const value = connection->call(parrots("Parsed"), {text}, generous());
        ASSERT_TRUE(value.has_value()) << text;
        EXPECT_EQ(*value, expected) << text;
    }
}

TEST(BusConnectionTests, errorsAndEmptyAnswersAreAbsentAndCostNotTheConnection) {
    PrivateBus const bus;
    Parrot const parrot(bus.address());
    auto connection = BusConnection::open(bus.address(), generous());
    ASSERT_TRUE(connection.has_value());
    EXPECT_EQ(connection->call(parrots("Nothing"), {}, generous()), std::nullopt);
    EXPECT_EQ(connection->call(parrots("Unknown"), {}, generous()), std::nullopt);
    EXPECT_EQ(connection->call(parrots("no name of a method"), {}, generous()), std::nullopt);
    EXPECT_TRUE(connection->isOpen());
    EXPECT_EQ(connection->call(parrots("Parsed"), {"true"}, generous()), BusValue{true});
}

TEST(BusConnectionTests, silenceEndsAtTheDeadline) {
    PrivateBus const bus;
    Parrot const parrot(bus.address());
    auto connection = BusConnection::open(bus.address(), generous());
    ASSERT_TRUE(connection.has_value());
    auto const deadline = Clock::now() + 200ms;
    EXPECT_EQ(connection->call(parrots("Silence"), {}, deadline), std::nullopt);
    EXPECT_GE(Clock::now(), deadline);
    EXPECT_TRUE(connection->isOpen());
    // An answer in time needs a deadline that has not passed.
    EXPECT_EQ(connection->call(parrots("Parsed"), {"true"}, generous()), BusValue{true});
}

TEST(BusConnectionTests, addressesThatLeadNowhereAreNoBus) {
    for (char const* address :
         {"", "no address at all", "unix:path=/nonexistent/bus", "autolaunch:", "unix:"})
        EXPECT_FALSE(BusConnection::open(address, generous()).has_value()) << address;
}

TEST(BusConnectionTests, endOfTheBusIsSeenByTheNextExchange) {
    BusAtAPath bus;
    auto connection = BusConnection::open(bus.address(), generous());
    ASSERT_TRUE(connection.has_value());
    bus.end();
    EXPECT_EQ(connection->call(parrots("Parsed"), {"true"}, generous()), std::nullopt);
    EXPECT_FALSE(connection->isOpen());
}

/// The appearance keeps its connection; on a bus that came back its first read is answered already.
TEST(PortalOnAReturningBusTests, firstReadAsksTheNewBus) {
    BusAtAPath bus;
    Platform::PortalAppearance const appearance(bus.address());
    EXPECT_EQ(appearance.interfaceFont(), std::nullopt); // Connected, to a bus without a portal.
    bus.end();
    bus.begin();
    ObjectOnBus const portal(
        bus.address(),
        {.busName = "org.freedesktop.portal.Desktop",
         .path = "/org/freedesktop/portal/desktop",
         .interfaceName = "org.freedesktop.portal.Settings",
         .members = "<method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
                    "<arg type='v' direction='out'/></method>"},
        [](auto, auto*, GDBusMethodInvocation* invocation) {
            g_dbus_method_invocation_return_value(invocation,
                                                  g_variant_new("(v)", g_variant_new_string("Inter 10")));
        });
    EXPECT_EQ(appearance.interfaceFont(), "Inter 10");
}

} // namespace
