#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Platform {

/// A value of a message on the bus. Integers keep whether they have a sign, not their width; paths and
/// signatures are text; arrays, structures and dictionary entries are lists; a variant is what it holds.
struct BusValue {
    std::variant<bool, std::int64_t, std::uint64_t, double, std::string, std::vector<BusValue>> value;

    /// The value as that type; nullptr when it is of another.
    template <typename Type>
    [[nodiscard]] Type const* as() const {
        return std::get_if<Type>(&value);
    }

    friend bool operator==(BusValue const&, BusValue const&) = default;
};

} // namespace Platform
