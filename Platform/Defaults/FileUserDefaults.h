#pragma once

#include "Foundation/JSON.h"
#include "Platform/Defaults/UserDefaults.h"
#include "Platform/Files/FileLocks.h"
#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <memory>

namespace Platform {

/// Settings in defaults.json in the configuration folder, one object that a person can read and edit:
///   {"meetAlarmMode":"hero","alarmEnabledCalendarIdentifiers":["k3fa\/work"],"key":{"data":"AAEC"}}
/// Data is base64 in an object of its own. Values of other kinds read as absent and are kept.
///
/// The file is read anew at each call. A change is made under a lock and written atomically, readable by its
/// owner alone; one that changes nothing writes nothing. A damaged file reads as an empty one; the first
/// change sets a copy of it aside as defaults.json.damaged and starts anew. A file that cannot be opened, or
/// is larger than `largestPreferenceFile`, is never replaced; a change that would make it larger is refused.
class FileUserDefaults final : public UserDefaults {
public:
    FileUserDefaults(std::filesystem::path directory, std::shared_ptr<FileManager const> files,
                     std::shared_ptr<FileLocks const> locks);

    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
    [[nodiscard]] std::optional<StringArray> stringArray(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override;

    [[nodiscard]] std::error_code setString(std::string_view key, std::string_view value) override;
    [[nodiscard]] std::error_code setStringArray(std::string_view key, StringArray const& value) override;
    [[nodiscard]] std::error_code setData(std::string_view key, std::string_view bytes) override;
    [[nodiscard]] std::error_code
    updateStringArray(std::string_view key, std::function<StringArray(StringArray)> const& change) override;
    [[nodiscard]] std::error_code removeObject(std::string_view key) override;

    /// The name of the file in its folder, for those who watch it.
    static constexpr std::string_view fileName = "defaults.json";
    [[nodiscard]] std::filesystem::path file() const;

private:
    [[nodiscard]] std::optional<Foundation::JSON::Value> value(std::string_view key) const;
    std::error_code set(std::string_view key, Foundation::JSON::Value value) const;
    std::error_code change(std::function<void(Foundation::JSON::Object&)> const& edit) const;
    std::error_code write(Foundation::JSON::Object values, std::optional<std::string> const& damaged) const;

    std::filesystem::path directory;
    std::shared_ptr<FileManager const> files;
    std::shared_ptr<FileLocks const> locks;
};

} // namespace Platform
