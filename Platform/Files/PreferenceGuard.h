#pragma once

#include "Platform/Files/FileManager.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A preference file that is looked after.
struct GuardedPreference {
    /// What it holds when it is whole.
    enum class Form : std::uint8_t { object, listOfTexts };
    /// Who keeps a copy of a damaged one.
    enum class Keeper : std::uint8_t { itsStore, guard };

    std::string_view fileName;
    Form form;
    Keeper keeper;
};

/// Whether the content of a file of that form can be understood.
bool isWhole(GuardedPreference::Form form, std::string_view content);

/// The user's files, with an eye on preference files. Their stores fall back in silence where a file is
/// damaged, and some write over it. So what keeps one from being read is told, "FILE: REASON", once; and
/// before a damaged one is written over, a copy is kept beside it, named with ".damaged" at the end. Where no
/// copy can be made the write fails with the reason of that. May be used from any thread.
class PreferenceGuard final : public FileManager {
public:
    using Tell = std::function<void(std::string const&)>;

    PreferenceGuard(std::shared_ptr<FileManager const> files, std::vector<GuardedPreference> preferences,
                    Tell tell);

    [[nodiscard]] std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() const override;
    std::error_code createDirectory(std::filesystem::path const& path) const override;
    [[nodiscard]] std::expected<std::string, std::error_code> contents(std::filesystem::path const& path,
                                                                       std::size_t mostBytes) const override;
    std::error_code writeAtomically(std::filesystem::path const& path,
                                    std::string_view content) const override;
    std::error_code appendToItem(std::filesystem::path const& path, std::string_view content) const override;
    std::error_code removeItem(std::filesystem::path const& path) const override;
    std::error_code clearQuarantineProperties(std::filesystem::path const& path) const override;

private:
    [[nodiscard]] GuardedPreference const* preferenceAt(std::filesystem::path const& path) const;
    void tellOnce(std::filesystem::path const& path, std::string const& reason) const;
    [[nodiscard]] std::error_code keepDamaged(std::filesystem::path const& path,
                                              GuardedPreference const& preference) const;

    std::shared_ptr<FileManager const> files;
    std::vector<GuardedPreference> preferences;
    Tell tell;
    mutable std::mutex mutex;
    mutable std::set<std::string> told;
};

} // namespace Platform
