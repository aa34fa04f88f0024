#pragma once

#include "Foundation/Date.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Platform {

/// One named value of a persisted object.
struct PersistedProperty {
    std::string name;
    std::variant<std::string, bool, Foundation::Date> value;

    bool operator==(PersistedProperty const&) const = default;
};

/// An object as a database keeps it. The type and the primary key say which one it is.
struct PersistedObject {
    std::string typeName;
    std::string primaryKey;
    std::vector<PersistedProperty> properties; ///< In declared order; no two of one name.

    bool operator==(PersistedObject const&) const = default;

    /// The value of that name and type; null when there is none.
    template <typename Value>
    [[nodiscard]] Value const* property(std::string_view name) const {
        for (auto const& candidate : properties) {
            if (candidate.name == name) return std::get_if<Value>(&candidate.value);
        }
        return nullptr;
    }
};

} // namespace Platform
