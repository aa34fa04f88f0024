#include "Foundation/Environment.h"

#include <utility>

#include <unistd.h>

namespace Foundation {

Environment::Environment(std::map<std::string, std::string, std::less<>> variables)
    : variables(std::move(variables)) {}

Environment Environment::ofProcess() {
    std::map<std::string, std::string, std::less<>> variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        std::string_view const text = *entry;
        auto const equals = text.find('=');
        if (equals == std::string_view::npos || equals == 0) continue;
        // getenv(3) finds the first of equal names, and so does this.
        variables.try_emplace(std::string(text.substr(0, equals)), text.substr(equals + 1));
    }
    return Environment(std::move(variables));
}

std::optional<std::string> Environment::value(std::string_view name) const {
    auto const entry = variables.find(name);
    if (entry == variables.end()) return std::nullopt;
    return entry->second;
}

std::vector<std::string> Environment::assignments() const {
    std::vector<std::string> lines;
    for (auto const& [name, value] : variables)
        lines.push_back(name + "=" + value);
    return lines;
}

Environment Environment::setting(std::string name, std::string value) const {
    Environment copy = *this;
    copy.variables.insert_or_assign(std::move(name), std::move(value));
    return copy;
}

} // namespace Foundation
