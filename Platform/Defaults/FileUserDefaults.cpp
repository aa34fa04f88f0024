#include "Platform/Defaults/FileUserDefaults.h"

#include "Foundation/Base64.h"
#include "Platform/Files/FreeName.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Platform {

namespace JSON = Foundation::JSON;

namespace {

constexpr std::chrono::seconds lockPatience{10};
constexpr char const* dataMember = "data";

// Absent when the document is none of ours.
std::optional<JSON::Object> parsedDocument(std::string_view text) {
    auto document = JSON::parse(text);
    if (!document) return std::nullopt;
    auto* const object = std::get_if<JSON::Object>(&document->storage);
    if (object == nullptr) return std::nullopt;
    return std::move(*object);
}

void remove(JSON::Object& values, std::string_view key) {
    std::erase_if(values, [key](auto const& member) { return member.first == key; });
}

// In the place of the former value, so that the file keeps its order.
void put(JSON::Object& values, std::string_view key, JSON::Value value) {
    auto const found = std::ranges::find(values, key, &std::pair<std::string, JSON::Value>::first);
    if (found == values.end()) {
        values.emplace_back(key, std::move(value));
        return;
    }
    found->second = std::move(value);
    // A second value of the same key was never read.
    values.erase(std::remove_if(std::next(found), values.end(),
                                [key](auto const& member) { return member.first == key; }),
                 values.end());
}

JSON::Value arrayValue(UserDefaults::StringArray const& texts) {
    return JSON::Array(texts.begin(), texts.end());
}

std::optional<UserDefaults::StringArray> textsOf(JSON::Value const& value) {
    auto texts = JSON::textList(value);
    if (!texts) return std::nullopt;
    return *std::move(texts);
}

} // namespace

FileUserDefaults::FileUserDefaults(std::filesystem::path directory, std::shared_ptr<FileManager const> files,
                                   std::shared_ptr<FileLocks const> locks)
    : directory(std::move(directory)),
      files(std::move(files)),
      locks(std::move(locks)) {}

std::filesystem::path FileUserDefaults::file() const {
    return directory / fileName;
}

std::optional<std::string> FileUserDefaults::string(std::string_view key) const {
    auto const found = value(key);
    if (!found) return std::nullopt;
    auto text = JSON::text(*found);
    if (!text) return std::nullopt;
    return *std::move(text);
}

std::optional<UserDefaults::StringArray> FileUserDefaults::stringArray(std::string_view key) const {
    auto const found = value(key);
    if (!found) return std::nullopt;
    return textsOf(*found);
}

std::optional<std::string> FileUserDefaults::data(std::string_view key) const {
    auto const found = value(key);
    if (!found) return std::nullopt;
    auto const* const member = found->member(dataMember);
    if (member == nullptr) return std::nullopt;
    auto const text = JSON::text(*member);
    if (!text) return std::nullopt;
    return Foundation::bytesFromBase64(*text);
}

std::error_code FileUserDefaults::setString(std::string_view key, std::string_view value) {
    return set(key, value);
}

std::error_code FileUserDefaults::setStringArray(std::string_view key, StringArray const& value) {
    return set(key, arrayValue(value));
}

std::error_code FileUserDefaults::setData(std::string_view key, std::string_view bytes) {
    return set(key, JSON::Object{{dataMember, Foundation::base64(bytes)}});
}

std::error_code FileUserDefaults::updateStringArray(std::string_view key,
                                                    std::function<StringArray(StringArray)> const& edited) {
    return change([&](JSON::Object& values) {
        auto const found = std::ranges::find(values, key, &std::pair<std::string, JSON::Value>::first);
        auto const former = found == values.end() ? std::nullopt : textsOf(found->second);
        auto const latter = edited(former.value_or(StringArray{}));
        if (former != latter) put(values, key, arrayValue(latter));
    });
}

std::error_code FileUserDefaults::removeObject(std::string_view key) {
    return change([key](JSON::Object& values) { remove(values, key); });
}

std::optional<JSON::Value> FileUserDefaults::value(std::string_view key) const {
    auto const content = files->contents(file(), largestPreferenceFile);
    if (!content) return std::nullopt;
    auto const values = parsedDocument(*content);
    if (!values) return std::nullopt;
    auto const found = std::ranges::find(*values, key, &std::pair<std::string, JSON::Value>::first);
    if (found == values->end()) return std::nullopt;
    return found->second;
}

std::error_code FileUserDefaults::set(std::string_view key, JSON::Value value) const {
    return change([&](JSON::Object& values) { put(values, key, std::move(value)); });
}

std::error_code FileUserDefaults::change(std::function<void(JSON::Object&)> const& edit) const {
    if (auto const failure = files->createDirectory(directory)) return failure;
    auto const held = locks->take(directory / ("." + std::string(fileName) + ".lock"), lockPatience);
    if (!held) return held.error();

    auto const present = files->contents(file(), largestPreferenceFile);
    if (!present && present.error() != std::errc::no_such_file_or_directory) return present.error();
    auto const former = present ? parsedDocument(*present) : JSON::Object();
    auto values = former.value_or(JSON::Object());
    edit(values);
    if (former == values) return {};
    return write(std::move(values), former ? std::nullopt : std::optional(*present));
}

std::error_code FileUserDefaults::write(JSON::Object values,
                                        std::optional<std::string> const& damaged) const {
    auto const document = JSON::serialize(std::move(values));
    if (!document) return std::make_error_code(std::errc::illegal_byte_sequence);
    // Nobody could read it again.
    if (document->size() > largestPreferenceFile) return std::make_error_code(std::errc::file_too_large);
    if (damaged) {
        // What cannot be read may still be mended by hand: it is kept beside the new settings.
        auto const copy = freeName(*files, file().string() + ".damaged");
        if (auto const failure = files->writeAtomically(copy, *damaged)) return failure;
    }
    return files->writeAtomically(file(), *document);
}

} // namespace Platform
