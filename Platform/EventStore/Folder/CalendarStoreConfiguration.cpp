#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"

#include "Foundation/JSON.h"
#include "Foundation/MD5.h"
#include "Foundation/Text.h"
#include "Platform/Files/FreeName.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fmt/format.h>
#include <ranges>
#include <utility>

namespace Platform {

namespace JSON = Foundation::JSON;

namespace {

// A letter and three base-36 digits of a digest of the path and of how often that was taken already.
std::string rootId(std::string const& path, int attempt) {
    constexpr std::string_view digits = "abcdefghijklmnopqrstuvwxyz0123456789";
    auto const digest = Foundation::md5(path + "#" + std::to_string(attempt));
    std::string id(1, digits[digest[0] % 26]);
    for (std::size_t byte = 1; byte < 4; ++byte)
        id += digits[digest[byte] % digits.size()];
    return id;
}

std::string freeRootId(std::string const& path, std::vector<CalendarRoot> const& roots) {
    for (int attempt = 0;; ++attempt) {
        auto id = rootId(path, attempt);
        if (std::ranges::find(roots, id, &CalendarRoot::id) == roots.end()) return id;
    }
}

std::optional<std::string> textMember(JSON::Value const& object, std::string_view name) {
    auto const* const member = object.member(name);
    if (!member) return std::nullopt;
    auto value = JSON::text(*member);
    if (!value) return std::nullopt;
    return *std::move(value);
}

std::optional<CalendarRoot> rootFromJSON(JSON::Value const& value) {
    auto const kind = textMember(value, "kind");
    auto const id = textMember(value, "id");
    auto const path = textMember(value, "path");
    auto const title = textMember(value, "title");
    if (!kind || !id || id->empty() || !path || path->empty() || !title) return std::nullopt;
    return CalendarRoot{.kind = *kind, .id = *id, .path = *path, .title = *title};
}

constexpr std::int64_t knownVersion = 1;

struct Document {
    std::vector<CalendarRoot> roots;
    std::size_t unreadableEntries = 0;
    bool isNewer = false;

    [[nodiscard]] bool isWhole() const { return unreadableEntries == 0 && !isNewer; }
};

// Absent when the document is no list of sources at all.
std::optional<Document> parsedDocument(std::string_view text) {
    auto const value = JSON::parse(text);
    if (!value) return std::nullopt;
    Document document;
    if (auto const* const member = value->member("version")) {
        auto const version = JSON::integer(*member);
        document.isNewer = version && *version > knownVersion;
    }
    auto const* const list = value->member("sources");
    auto const* const entries = list ? std::get_if<JSON::Array>(&list->storage) : nullptr;
    if (!entries) {
        if (!document.isNewer) return std::nullopt;
        return document;
    }
    for (auto const& entry : *entries) {
        if (auto root = rootFromJSON(entry))
            document.roots.push_back(*std::move(root));
        else
            ++document.unreadableEntries;
    }
    return document;
}

JSON::Value documentOf(std::vector<CalendarRoot> const& roots) {
    JSON::Array entries;
    for (auto const& root : roots) {
        JSON::Object entry;
        entry.emplace_back("kind", root.kind);
        entry.emplace_back("id", root.id);
        entry.emplace_back("path", root.path.string());
        entry.emplace_back("title", root.title);
        entries.emplace_back(std::move(entry));
    }
    JSON::Object document;
    document.emplace_back("version", knownVersion);
    document.emplace_back("sources", std::move(entries));
    return document;
}

std::filesystem::path canonicalOrSame(std::filesystem::path const& path) {
    std::error_code failure;
    auto canonical = std::filesystem::canonical(path, failure);
    return failure ? path : canonical;
}

std::filesystem::path withoutTrailingSlash(std::filesystem::path const& path) {
    auto normal = path.lexically_normal();
    return normal.has_filename() || normal == normal.root_path() ? normal : normal.parent_path();
}

} // namespace

CalendarStoreConfiguration::CalendarStoreConfiguration(std::filesystem::path directory,
                                                       std::shared_ptr<FileManager const> files,
                                                       std::shared_ptr<FileLocks const> locks)
    : directory(std::move(directory)),
      files(std::move(files)),
      locks(std::move(locks)) {}

std::filesystem::path CalendarStoreConfiguration::file() const {
    return directory / "calendar-store.json";
}

CalendarStoreConfiguration::Content CalendarStoreConfiguration::load() const {
    auto const text = files->contents(file(), largestPreferenceFile);
    if (!text) {
        if (text.error() == std::errc::no_such_file_or_directory) return {};
        return {.roots = {},
                .problem = fmt::format(
                    "the list of calendar folders could not be read ({}), so none of them is shown",
                    text.error().message()),
                .mayBeChanged = false};
    }
    auto document = parsedDocument(*text);
    if (!document) {
        return {.roots = {},
                .problem =
                    "the list of calendar folders is damaged, so none of them is shown; the next change "
                    "keeps a copy of it and starts a new list"};
    }
    if (document->isNewer) {
        return {.roots = std::move(document->roots),
                .problem = "the list of calendar folders was written by a newer version of Quillora; what is "
                           "understood of it is shown, and it cannot be changed",
                .mayBeChanged = false};
    }
    Content content{.roots = std::move(document->roots), .problem = std::nullopt};
    if (document->unreadableEntries > 0) {
        content.problem =
            fmt::format("the list of calendar folders is damaged in {} of its entries, which are not shown; "
                        "the next change keeps a copy of it and goes on with the rest",
                        document->unreadableEntries);
    }
    return content;
}

std::expected<CalendarRoot, std::string>
CalendarStoreConfiguration::add(std::filesystem::path const& folder, std::optional<std::string> title) const {
    auto const path = withoutTrailingSlash(folder);
    auto const shown = Foundation::Text::sanitizedUTF8(path.string());
    if (!path.is_absolute()) {
        return std::unexpected(fmt::format("{} is not an absolute path; nothing was added.", shown));
    }
    if (!Foundation::Text::isValidUTF8(path.string())) {
        return std::unexpected(fmt::format(
            "The folder name {} is not valid UTF-8; nothing was added. Rename the folder first.", shown));
    }
    std::error_code failure;
    auto const status = std::filesystem::status(path, failure);
    if (status.type() == std::filesystem::file_type::not_found) {
        return std::unexpected(fmt::format("There is no folder {}; nothing was added.", shown));
    }
    if (failure) {
        return std::unexpected(
            fmt::format("{} could not be examined ({}); nothing was added.", shown, failure.message()));
    }
    if (!std::filesystem::is_directory(status)) {
        return std::unexpected(
            fmt::format("{} is not a folder; nothing was added. Name the folder that holds "
                        "the calendar files.",
                        shown));
    }
    auto const held = lock();
    if (!held) return std::unexpected(held.error() + "; nothing was added.");
    return addWhileLocked(path, title);
}

std::expected<CalendarRoot, std::string>
CalendarStoreConfiguration::addWhileLocked(std::filesystem::path const& path,
                                           std::optional<std::string> const& title) const {
    auto content = load();
    if (!content.mayBeChanged)
        return std::unexpected(fmt::format("{}: {}; nothing was added.", file().string(), *content.problem));
    auto const shown = Foundation::Text::sanitizedUTF8(path.string());
    auto roots = std::move(content.roots);
    for (auto const& root : roots) {
        if (canonicalOrSame(root.path) == canonicalOrSame(path)) {
            return std::unexpected(
                fmt::format("{} is a source already (\"{}\"); nothing was added.", shown, root.title));
        }
    }
    auto const name = path.filename().string();
    CalendarRoot root{.kind = folderRootKind,
                      .id = freeRootId(path.string(), roots),
                      .path = path,
                      .title = Foundation::Text::sanitizedUTF8(title.value_or(name.empty() ? shown : name))};
    roots.push_back(root);
    if (auto const problem = write(roots)) return std::unexpected(*problem);
    return root;
}

std::expected<CalendarRoot, std::string> CalendarStoreConfiguration::remove(std::string_view which) const {
    auto const held = lock();
    if (!held) return std::unexpected(held.error() + "; nothing was removed.");
    return removeWhileLocked(which);
}

std::expected<CalendarRoot, std::string>
CalendarStoreConfiguration::removeWhileLocked(std::string_view which) const {
    auto const content = load();
    if (!content.mayBeChanged)
        return std::unexpected(
            fmt::format("{}: {}; nothing was removed.", file().string(), *content.problem));
    auto roots = content.roots;
    auto const wanted = canonicalOrSame(withoutTrailingSlash(std::filesystem::path(which)));
    auto const isNamed = [&](CalendarRoot const& root) {
        return root.id == which || root.title == which || root.path == which ||
               canonicalOrSame(root.path) == wanted;
    };
    auto const found = std::ranges::find_if(roots, isNamed);
    auto const shown = Foundation::Text::sanitizedUTF8(which);
    if (found == roots.end()) {
        return std::unexpected(fmt::format("No source is called {}; nothing was removed.", shown));
    }
    if (std::ranges::find_if(std::next(found), roots.end(), isNamed) != roots.end()) {
        return std::unexpected(fmt::format(
            "Several sources are called {}; nothing was removed. Name one by its id or path.", shown));
    }
    auto removed = *found;
    roots.erase(found);
    if (auto const problem = write(roots)) return std::unexpected(*problem);
    return removed;
}

std::expected<std::unique_ptr<FileLocks::Held>, std::string> CalendarStoreConfiguration::lock() const {
    if (!locks) return nullptr;
    auto const refuse = [](std::filesystem::path const& path, std::error_code failure) {
        return std::unexpected(fmt::format("{} could not be locked ({})", path.string(), failure.message()));
    };
    if (auto const failure = files->createDirectory(directory)) return refuse(directory, failure);
    auto const lockFile = directory / ".calendar-store.json.lock";
    auto held = locks->take(lockFile, std::chrono::seconds(10));
    if (!held) return refuse(lockFile, held.error());
    return *std::move(held);
}

std::optional<std::string> CalendarStoreConfiguration::write(std::vector<CalendarRoot> const& roots) const {
    auto const refuse = [&](std::filesystem::path const& path, std::error_code failure) {
        return fmt::format("{} could not be written ({}); the list of sources is unchanged.", path.string(),
                           failure.message());
    };
    auto const document = JSON::serialize(documentOf(roots));
    if (!document)
        return fmt::format("A source's text is not valid UTF-8; {} is unchanged.", file().string());
    // Nobody could read it again.
    if (document->size() > largestPreferenceFile)
        return refuse(file(), std::make_error_code(std::errc::file_too_large));
    if (auto const failure = files->createDirectory(directory)) return refuse(directory, failure);

    auto const present = files->contents(file(), largestPreferenceFile);
    if (!present && present.error() != std::errc::no_such_file_or_directory)
        return refuse(file(), present.error());
    auto const former = present ? parsedDocument(*present) : std::nullopt;
    if (present && !(former && former->isWhole())) {
        // What cannot be read may still be mended by hand: it is kept beside the new list.
        auto const copy = freeName(*files, file().string() + ".damaged");
        if (auto const failure = files->writeAtomically(copy, *present)) return refuse(copy, failure);
    }
    if (auto const failure = files->writeAtomically(file(), *document)) return refuse(file(), failure);
    return std::nullopt;
}

} // namespace Platform
