#include "Platform/Resources/Bundle.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace Platform {
namespace {

using std::filesystem::path;

constexpr std::string_view developmentLanguage = "en";

std::optional<std::string> content(path const& file) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure)) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    if (!stream.good() && !stream.eof()) return std::nullopt;
    return text;
}

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

std::vector<std::string> const& Bundle::problems() const {
    return found;
}

void Bundle::addTable(std::string const& language) {
    // A language comes from the environment: it names a folder in here, or nothing.
    if (language.empty() || language.find('/') != std::string::npos) return;
    auto hyphenated = language;
    std::ranges::replace(hyphenated, '_', '-');
    for (auto const& name : {language, hyphenated}) {
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

} // namespace Platform
