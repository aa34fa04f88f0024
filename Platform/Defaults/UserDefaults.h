#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Platform {

/// A person's settings: typed values under text keys, shared by all programs of that person. No operation
/// throws. A change is seen by every later read, in this process and in others, and outlives both; of two
/// changes of one key the later one stands, and changes of different keys never cost each other.
///
/// A change that fails leaves everything as it was and yields why: `illegal_byte_sequence` when a key or a
/// text is not UTF-8, else what the system says.
class UserDefaults {
public:
    using StringArray = std::vector<std::string>;

    virtual ~UserDefaults() = default;

    /// The value of that key. Absent when there is none, when it is of another type, and when the settings
    /// cannot be read.
    [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<StringArray> stringArray(std::string_view key) const = 0;
    /// Any bytes.
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) const = 0;

    /// Puts a value in the place of the former one, of whatever type that was.
    [[nodiscard]] virtual std::error_code setString(std::string_view key, std::string_view value) = 0;
    [[nodiscard]] virtual std::error_code setStringArray(std::string_view key, StringArray const& value) = 0;
    [[nodiscard]] virtual std::error_code setData(std::string_view key, std::string_view bytes) = 0;

    /// Loads a list, changes it and stores the outcome as one step: of changes that several programs make at
    /// once none is lost. A list that is absent is given as an empty one. `change` may not use these
    /// settings.
    [[nodiscard]] virtual std::error_code
    updateStringArray(std::string_view key, std::function<StringArray(StringArray)> const& change) = 0;

    /// Takes the key out. One that is not there is no error.
    [[nodiscard]] virtual std::error_code removeObject(std::string_view key) = 0;
};

} // namespace Platform
