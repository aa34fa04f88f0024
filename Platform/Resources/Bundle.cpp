#include "Platform/Resources/Bundle.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>

namespace Platform {
namespace {

using std::filesystem::path;

constexpr std::string_view developmentLanguage = "en";

} // namespace

Bundle::Bundle(path folder) : location(std::move(folder)) {}

std::optional<Bundle> Bundle::open(path const& folder, std::vector<std::string> const& languages) {
    std::error_code failure;
    if (!std::filesystem::is_directory(folder, failure)) return std::nullopt;
    Bundle bundle(folder);
    for (auto const& language : languages)
        bundle.addTable(language);
    if (std::ranges::find(languages, developmentLanguage) == languages.end())
        bundle.addTable(std::string(developmentLanguage));
    bundle.addColors();
    return bundle;
}

path const& Bundle::folder() const {
    return location;
}

std::string Bundle::text(std::string_view key) const {
    return find(key).value_or(std::string(key));
}

std::optional<std::string> Bundle::find(std::string_view key) const {
    for (auto const& table : tables) {
        if (auto text = table.file.find(key)) return text;
    }
    return std::nullopt;
}

std::optional<std::string> Bundle::findCounted(std::string_view key, std::int64_t count) const {
    for (auto const& table : tables) {
        if (auto text = table.file.findCounted(key, count, table.language)) return text;
    }
    return std::nullopt;
}

std::optional<ColorsFile::Color> Bundle::color(std::string_view name, ColorScheme scheme) const {
    return colors.find(name, scheme);
}

std::vector<std::string> const& Bundle::problems() const {
    return found;
}

void Bundle::addTable(std::string const& language) {
    // A language comes from the environment: it names a folder in here, or nothing.
    if (language.empty() || language.find('/') != std::string::npos) return;
    auto hyphenated = language;
    std::ranges::replace(hyphenated, '_', '-');
    auto const spellings = hyphenated == language ? std::vector{language} : std::vector{language, hyphenated};
    for (auto const& name : spellings) {
        auto const file = location / (name + ".lproj") / "Localizable.strings";
        auto const text = content(file);
        if (!text) continue;
        auto table = StringsFile::parse(*text);
        for (auto const& problem : table.problems)
            found.push_back(file.string() + ":" + std::to_string(problem.line) + ": " + problem.reason);
        tables.push_back({.language = language, .file = std::move(table)});
        return;
    }
}

void Bundle::addColors() {
    auto const file = location / "Colors.json";
    auto const document = content(file);
    if (!document) return;
    colors = ColorsFile::parse(*document);
    for (auto const& problem : colors.problems)
        found.push_back(file.string() + ": " + problem);
}

// Absent, and no problem, where there is no such file.
std::optional<std::string> Bundle::content(path const& file) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure)) return std::nullopt;
    auto const size = std::filesystem::file_size(file, failure);
    if (!failure && size > largestTable) {
        found.push_back(file.string() + ": larger than 1 MiB; left out");
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string text(failure ? 0 : size, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (failure || stream.bad() || !stream.is_open()) {
        found.push_back(file.string() + ": cannot be read; left out");
        return std::nullopt;
    }
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

} // namespace Platform
