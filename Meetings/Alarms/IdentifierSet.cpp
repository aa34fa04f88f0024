#include "Meetings/Alarms/IdentifierSet.h"

#include <optional>

namespace Meetings::IdentifierSet {

using StringArray = Platform::UserDefaults::StringArray;

std::set<std::string> load(Platform::UserDefaults const& defaults, std::string_view key) {
    auto const stored = defaults.stringArray(key).value_or(StringArray{});
    return {stored.begin(), stored.end()};
}

std::error_code save(Platform::UserDefaults& defaults, std::string_view key,
                     std::set<std::string> const& identifiers) {
    return defaults.setStringArray(key, {identifiers.begin(), identifiers.end()});
}

std::error_code update(Platform::UserDefaults& defaults, std::string_view key,
                       std::function<void(std::set<std::string>&)> const& change) {
    return defaults.updateStringArray(key, [&](StringArray const& stored) {
        std::set<std::string> identifiers(stored.begin(), stored.end());
        change(identifiers);
        return StringArray(identifiers.begin(), identifiers.end());
    });
}

} // namespace Meetings::IdentifierSet
