#pragma once

#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Resources/ColorsFile.h"
#include "Platform/Resources/StringsFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// A folder of resources. Its texts stand in `<language>.lproj/Localizable.strings`, one table a language,
/// and its named colours, if it has any, in `Colors.json`. The tables are read once, when it opens.
class Bundle {
public:
    /// Bytes of the largest table that is read; a larger one counts as a problem and is left out.
    static constexpr std::size_t largestTable = 1 << 20;

    /// Opens the folder. `languages` are those of the user, best first ("es_MX", "es"); English comes after
    /// them. Absent when no folder is there; an empty one is a bundle without texts.
    static std::optional<Bundle> open(std::filesystem::path const& folder,
                                      std::vector<std::string> const& languages);

    [[nodiscard]] std::filesystem::path const& folder() const;

    /// The text in the first language that has it, else in English, else the key itself.
    [[nodiscard]] std::string text(std::string_view key) const;

    /// The same, absent when no language has the key.
    [[nodiscard]] std::optional<std::string> find(std::string_view key) const;

    /// The text that goes with a number: `key` is there once for each plural form of its language, as
    /// "key.one", "key.other" and so on. The first language that has "key.other" decides; absent when none
    /// has.
    [[nodiscard]] std::optional<std::string> findCounted(std::string_view key, std::int64_t count) const;

    /// The named colour as sRGB channels from 0 to 1; absent where the bundle has none of that name for the
    /// scheme.
    [[nodiscard]] std::optional<std::array<double, 3>> color(std::string_view name, ColorScheme scheme) const;

    /// What was wrong with the tables, each as "<file>:<line>: <reason>", without the line where the whole
    /// file or a colour is meant.
    [[nodiscard]] std::vector<std::string> const& problems() const;

private:
    explicit Bundle(std::filesystem::path folder);
    void addTable(std::string const& language);
    void addColors();
    [[nodiscard]] std::optional<std::string> content(std::filesystem::path const& file);

    struct Table {
        std::string language;
        StringsFile file;
    };

    std::filesystem::path location;
    std::vector<Table> tables;
    ColorsFile colors;
    std::vector<std::string> found;
};

} // namespace Platform
