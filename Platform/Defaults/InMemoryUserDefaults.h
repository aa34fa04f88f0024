#pragma once

#include "Platform/Defaults/UserDefaults.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <variant>

namespace Platform {

/// Settings that live in this object: for tests, and for previews that must leave nothing behind.
class InMemoryUserDefaults final : public UserDefaults {
public:
    /// After so many more changes every further one fails as on a full disk.
    void failsAfter(std::size_t changes);

    /// The keys that have a value, in order.
    [[nodiscard]] StringArray keys() const;

    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
    [[nodiscard]] std::optional<StringArray> stringArray(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override;

    [[nodiscard]] std::error_code setString(std::string_view key, std::string_view value) override;
    [[nodiscard]] std::error_code setStringArray(std::string_view key, StringArray const& value) override;
    [[nodiscard]] std::error_code setData(std::string_view key, std::string_view bytes) override;
    [[nodiscard]] std::error_code
    updateStringArray(std::string_view key, std::function<StringArray(StringArray)> const& change) override;
    [[nodiscard]] std::error_code removeObject(std::string_view key) override;

private:
    struct Data {
        std::string bytes;
    };
    using Value = std::variant<std::string, StringArray, Data>;

    template <typename T>
    [[nodiscard]] std::optional<T> value(std::string_view key) const;
    std::error_code takeChange();
    std::error_code set(std::string_view key, Value value);

    mutable std::mutex mutex;
    std::map<std::string, Value, std::less<>> values;
    std::optional<std::size_t> changesLeft;
};

} // namespace Platform
