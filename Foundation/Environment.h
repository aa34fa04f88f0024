#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Foundation {

/// A snapshot of the process environment. It is taken once, in main, and handed down: nothing else reads
/// the live environment, so tests give their own and no thread races with setenv(3).
class Environment {
public:
    Environment() = default;
    explicit Environment(std::map<std::string, std::string, std::less<>> variables);
    /// Of names and values written out: `Environment({{"LANG", "es_ES"}})`.
    explicit Environment(std::initializer_list<std::pair<std::string const, std::string>> variables)
        : variables(variables) {}

    /// The environment of this process as it stands now.
    static Environment ofProcess();

    /// The variable's value; absent when unset. A set but empty variable yields an empty text.
    [[nodiscard]] std::optional<std::string> value(std::string_view name) const;

    /// All of it as "NAME=value", ordered by name: what a child process is given.
    [[nodiscard]] std::vector<std::string> assignments() const;

    /// A copy in which `name` is set to `value`.
    [[nodiscard]] Environment setting(std::string name, std::string value) const;

private:
    std::map<std::string, std::string, std::less<>> variables;
};

} // namespace Foundation
