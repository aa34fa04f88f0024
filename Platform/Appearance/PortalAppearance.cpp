#include "Platform/Appearance/PortalAppearance.h"

#include "Platform/Appearance/PortalSettings.h"
#include "Platform/SessionBus/BusConnection.h"

#include <mutex>
#include <utility>
#include <vector>

namespace Platform {
namespace {

constexpr BusMethod readSetting{.owner = PortalSettings::busName,
                                .objectPath = PortalSettings::objectPath,
                                .interface = PortalSettings::interfaceName,
                                .name = "Read"};

bool isChannel(double value) {
    return value >= 0.0 && value <= 1.0;
}

std::optional<std::array<double, 3>> channelsFrom(std::vector<BusValue> const& values) {
    std::array<double, 3> channels{};
    if (values.size() != channels.size()) return std::nullopt;
    for (std::size_t index = 0; index < channels.size(); ++index) {
        auto const* const channel = values.at(index).as<double>();
        if (channel == nullptr || !isChannel(*channel)) return std::nullopt;
        channels.at(index) = *channel;
    }
    return channels;
}

} // namespace

/// The connection, made at the first read and kept while the bus lives.
class PortalAppearance::Bus {
public:
    explicit Bus(std::optional<std::string> address) : address(std::move(address)) {}

    /// The value of a key of one namespace; absent where nobody answers in time.
    std::optional<BusValue> read(std::string const& key,
                                 std::string const& space = PortalSettings::appearance) {
        if (!address) return std::nullopt;
        auto const deadline = std::chrono::steady_clock::now() + patience;
        std::unique_lock const lock(mutex, deadline);
        if (!lock) return std::nullopt;
        // That the bus has gone, and may have come back, is seen only when something is asked on it.
        bool const wasOpen = connection && connection->isOpen();
        auto answer = ask({space, key}, deadline);
        if (!answer && wasOpen && !connection->isOpen()) answer = ask({space, key}, deadline);
        return answer;
    }

private:
    std::optional<BusValue> ask(std::vector<std::string> const& setting, BusConnection::Deadline deadline) {
        if (!connection || !connection->isOpen()) connection = BusConnection::open(*address, deadline);
        return connection ? connection->call(readSetting, setting, deadline) : std::nullopt;
    }

    std::optional<std::string> address;
    std::timed_mutex mutex;
    std::optional<BusConnection> connection;
};

PortalAppearance::PortalAppearance(std::optional<std::string> busAddress)
    : bus(std::make_unique<Bus>(std::move(busAddress))) {}

PortalAppearance::~PortalAppearance() = default;

std::optional<ColorScheme> PortalAppearance::colorScheme() const {
    auto const value = bus->read("color-scheme");
    auto const* const preference = value ? value->as<std::uint64_t>() : nullptr;
    if (preference == nullptr) return std::nullopt;
    constexpr std::uint64_t prefersDark = 1;
    return *preference == prefersDark ? ColorScheme::dark : ColorScheme::light;
}

std::optional<std::array<double, 3>> PortalAppearance::accentColor() const {
    auto const value = bus->read("accent-color");
    auto const* const channels = value ? value->as<std::vector<BusValue>>() : nullptr;
    return channels == nullptr ? std::nullopt : channelsFrom(*channels);
}

std::optional<std::string> PortalAppearance::interfaceFont() const {
    auto const value = bus->read("font-name", PortalSettings::desktopInterface);
    auto const* const font = value ? value->as<std::string>() : nullptr;
    if (font == nullptr || font->empty()) return std::nullopt;
    return *font;
}

} // namespace Platform
