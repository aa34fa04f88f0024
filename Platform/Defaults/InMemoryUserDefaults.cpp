#include "Platform/Defaults/InMemoryUserDefaults.h"

#include "Foundation/Text.h"

#include <algorithm>
#include <utility>

namespace Platform {

using Foundation::Text::isValidUTF8;

void InMemoryUserDefaults::failsAfter(std::size_t changes) {
    std::scoped_lock const lock(mutex);
    changesLeft = changes;
}

UserDefaults::StringArray InMemoryUserDefaults::keys() const {
    std::scoped_lock const lock(mutex);
    StringArray names;
    for (auto const& [name, value] : values)
        names.push_back(name);
    return names;
}

std::optional<std::string> InMemoryUserDefaults::string(std::string_view key) const {
    return value<std::string>(key);
}

std::optional<UserDefaults::StringArray> InMemoryUserDefaults::stringArray(std::string_view key) const {
    return value<StringArray>(key);
}

std::optional<std::string> InMemoryUserDefaults::data(std::string_view key) const {
    auto found = value<Data>(key);
    if (!found) return std::nullopt;
    return std::move(found->bytes);
}

std::error_code InMemoryUserDefaults::setString(std::string_view key, std::string_view value) {
    std::scoped_lock const lock(mutex);
    if (!isValidUTF8(value)) return std::make_error_code(std::errc::illegal_byte_sequence);
    return set(key, std::string(value));
}

std::error_code InMemoryUserDefaults::setStringArray(std::string_view key, StringArray const& value) {
    std::scoped_lock const lock(mutex);
    if (!std::ranges::all_of(value, isValidUTF8))
        return std::make_error_code(std::errc::illegal_byte_sequence);
    return set(key, value);
}

std::error_code InMemoryUserDefaults::setData(std::string_view key, std::string_view bytes) {
    std::scoped_lock const lock(mutex);
    return set(key, Data{std::string(bytes)});
}

std::error_code
InMemoryUserDefaults::updateStringArray(std::string_view key,
                                        std::function<StringArray(StringArray)> const& change) {
    std::scoped_lock const lock(mutex);
    auto const found = values.find(key);
    auto const* const former = found == values.end() ? nullptr : std::get_if<StringArray>(&found->second);
    auto const latter = change(former == nullptr ? StringArray{} : *former);
    if (former != nullptr && *former == latter) return {};
    if (!std::ranges::all_of(latter, isValidUTF8))
        return std::make_error_code(std::errc::illegal_byte_sequence);
    return set(key, latter);
}

std::error_code InMemoryUserDefaults::removeObject(std::string_view key) {
    std::scoped_lock const lock(mutex);
    auto const found = values.find(key);
    if (found == values.end()) return {};
    if (auto const failure = takeChange()) return failure;
    values.erase(found);
    return {};
}

template <typename T>
std::optional<T> InMemoryUserDefaults::value(std::string_view key) const {
    std::scoped_lock const lock(mutex);
    auto const found = values.find(key);
    if (found == values.end()) return std::nullopt;
    auto const* const value = std::get_if<T>(&found->second);
    if (value == nullptr) return std::nullopt;
    return *value;
}

std::error_code InMemoryUserDefaults::takeChange() {
    if (changesLeft == 0) return std::make_error_code(std::errc::no_space_on_device);
    if (changesLeft) --*changesLeft;
    return {};
}

std::error_code InMemoryUserDefaults::set(std::string_view key, Value value) {
    if (!isValidUTF8(key)) return std::make_error_code(std::errc::illegal_byte_sequence);
    if (auto const failure = takeChange()) return failure;
    values.insert_or_assign(std::string(key), std::move(value));
    return {};
}

} // namespace Platform
