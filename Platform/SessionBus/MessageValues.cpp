#include "Platform/SessionBus/MessageValues.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Platform {

namespace {

// A message's values nest no deeper than 128 containers, which the library sees to (D-Bus specification,
// "Valid Signatures"), so reading them by recursion is bounded.
std::optional<BusValue> nextValue(sd_bus_message* message);

template <typename Read, typename Kept>
std::optional<BusValue> number(sd_bus_message* message, char type) {
    Read read{};
    if (sd_bus_message_read_basic(message, type, &read) <= 0) return std::nullopt;
    return BusValue{static_cast<Kept>(read)};
}

std::optional<BusValue> text(sd_bus_message* message, char type) {
    char const* read = nullptr;
    if (sd_bus_message_read_basic(message, type, &read) <= 0) return std::nullopt;
    return BusValue{std::string(read)};
}

std::optional<BusValue> truth(sd_bus_message* message) {
    int read = 0; // The library's booleans are as wide as an int.
    if (sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &read) <= 0) return std::nullopt;
    return BusValue{read != 0};
}

std::optional<BusValue> contentsOf(sd_bus_message* message, char type, char const* contents) {
    if (sd_bus_message_enter_container(message, type, contents) <= 0) return std::nullopt;
    std::vector<BusValue> values;
    while (sd_bus_message_at_end(message, 0) == 0) {
        auto value = nextValue(message);
        if (!value) return std::nullopt;
        values.push_back(std::move(*value));
    }
    if (sd_bus_message_exit_container(message) < 0) return std::nullopt;
    if (type != SD_BUS_TYPE_VARIANT) return BusValue{std::move(values)};
    if (values.size() != 1) return std::nullopt;
    return std::move(values.front());
}

std::optional<BusValue> nextValue(sd_bus_message* message) {
    char type = 0;
    char const* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0) return std::nullopt;
    switch (type) {
    case SD_BUS_TYPE_BOOLEAN: return truth(message);
    case SD_BUS_TYPE_BYTE: return number<std::uint8_t, std::uint64_t>(message, type);
    case SD_BUS_TYPE_UINT16: return number<std::uint16_t, std::uint64_t>(message, type);
    case SD_BUS_TYPE_UINT32: return number<std::uint32_t, std::uint64_t>(message, type);
    case SD_BUS_TYPE_UINT64: return number<std::uint64_t, std::uint64_t>(message, type);
    case SD_BUS_TYPE_INT16: return number<std::int16_t, std::int64_t>(message, type);
    case SD_BUS_TYPE_INT32: return number<std::int32_t, std::int64_t>(message, type);
    case SD_BUS_TYPE_INT64: return number<std::int64_t, std::int64_t>(message, type);
    case SD_BUS_TYPE_DOUBLE: return number<double, double>(message, type);
    case SD_BUS_TYPE_STRING:
    case SD_BUS_TYPE_OBJECT_PATH:
    case SD_BUS_TYPE_SIGNATURE: return text(message, type);
    case SD_BUS_TYPE_ARRAY:
    case SD_BUS_TYPE_STRUCT:
    case SD_BUS_TYPE_DICT_ENTRY:
    case SD_BUS_TYPE_VARIANT: return contentsOf(message, type, contents);
    default: return std::nullopt;
    }
}

} // namespace

std::optional<BusValue> firstValue(sd_bus_message* message) {
    return nextValue(message);
}

} // namespace Platform
