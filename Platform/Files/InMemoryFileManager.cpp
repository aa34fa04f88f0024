#include "Platform/Files/InMemoryFileManager.h"

#include <algorithm>
#include <utility>

namespace Platform {

using std::filesystem::path;
using Kind = InMemoryFileManager::Operation::Kind;

InMemoryFileManager::InMemoryFileManager()
    : folders{"/", "/container", "/data", "/tmp"},
      container("/container"),
      dataHome("/data") {}

void InMemoryFileManager::withoutContainer() {
    container.reset();
}

void InMemoryFileManager::withVanishedContainer() {
    std::lock_guard const lock(mutex);
    container = "/vanished";
}

void InMemoryFileManager::withoutApplicationSupport() {
    dataHome.reset();
}

void InMemoryFileManager::failsAfter(std::size_t writes) {
    std::lock_guard const lock(mutex);
    writesLeft = writes;
}

void InMemoryFileManager::refusesReads() {
    readsAreRefused = true;
}

void InMemoryFileManager::place(path const& file, std::string content, std::uint32_t mode) {
    std::lock_guard const lock(mutex);
    makeFolders(file.parent_path());
    entries.insert_or_assign(file, File{.content = std::move(content), .mode = mode});
}

std::vector<InMemoryFileManager::Operation> InMemoryFileManager::history() const {
    std::lock_guard const lock(mutex);
    return operations;
}

std::optional<std::string> InMemoryFileManager::content(path const& file) const {
    std::lock_guard const lock(mutex);
    auto const entry = entries.find(file);
    if (entry == entries.end()) return std::nullopt;
    return entry->second.content;
}

std::optional<std::uint32_t> InMemoryFileManager::mode(path const& file) const {
    std::lock_guard const lock(mutex);
    auto const entry = entries.find(file);
    if (entry == entries.end()) return std::nullopt;
    return entry->second.mode;
}

std::vector<path> InMemoryFileManager::files() const {
    std::lock_guard const lock(mutex);
    std::vector<path> paths;
    for (auto const& [file, entry] : entries)
        paths.push_back(file);
    return paths;
}

std::size_t InMemoryFileManager::writeCount(path const& file) const {
    std::lock_guard const lock(mutex);
    auto const isWrite = [&](Operation const& operation) {
        return operation.kind == Kind::write && operation.path == file && operation.succeeded;
    };
    return static_cast<std::size_t>(std::ranges::count_if(operations, isWrite));
}

std::optional<path>
InMemoryFileManager::containerURLForSecurityApplicationGroupIdentifier(std::string_view) const {
    return container;
}

path InMemoryFileManager::temporaryDirectory() const {
    return "/tmp";
}

std::optional<path> InMemoryFileManager::applicationSupportDirectory() const {
    return dataHome;
}

std::error_code InMemoryFileManager::createDirectory(path const& folder) const {
    std::lock_guard const lock(mutex);
    return recording(Kind::createDirectory, folder, makeFolders(folder));
}

std::expected<std::string, std::error_code> InMemoryFileManager::contents(path const& file,
                                                                          std::size_t mostBytes) const {
    std::lock_guard const lock(mutex);
    auto const entry = entries.find(file);
    std::error_code failure;
    if (readsAreRefused)
        failure = std::make_error_code(std::errc::permission_denied);
    else if (folders.contains(file))
        failure = std::make_error_code(std::errc::is_a_directory);
    else if (entry == entries.end())
        failure = std::make_error_code(std::errc::no_such_file_or_directory);
    else if (entry->second.content.size() > mostBytes)
        failure = std::make_error_code(std::errc::file_too_large);
    if (recording(Kind::read, file, failure)) return std::unexpected(failure);
    return entry->second.content;
}

std::error_code InMemoryFileManager::writeAtomically(path const& file, std::string_view content) const {
    std::lock_guard const lock(mutex);
    return recording(Kind::write, file, write(file, content));
}

std::error_code InMemoryFileManager::appendToItem(path const& file, std::string_view content) const {
    std::lock_guard const lock(mutex);
    auto const entry = entries.find(file);
    std::string const former = entry == entries.end() ? "" : entry->second.content;
    return recording(Kind::append, file, write(file, former + std::string(content)));
}

std::error_code InMemoryFileManager::removeItem(path const& file) const {
    std::lock_guard const lock(mutex);
    std::error_code failure;
    if (folders.contains(file))
        failure = std::make_error_code(std::errc::is_a_directory);
    else if (entries.erase(file) == 0)
        failure = std::make_error_code(std::errc::no_such_file_or_directory);
    return recording(Kind::remove, file, failure);
}

std::error_code InMemoryFileManager::clearQuarantineProperties(path const& file) const {
    std::lock_guard const lock(mutex);
    return recording(Kind::clearQuarantine, file, {});
}

std::error_code InMemoryFileManager::recording(Operation::Kind kind, path const& file,
                                               std::error_code failure) const {
    operations.push_back({.kind = kind, .path = file, .succeeded = !failure});
    return failure;
}

std::error_code InMemoryFileManager::write(path const& file, std::string_view content) const {
    if (writesLeft && *writesLeft == 0) return std::make_error_code(std::errc::no_space_on_device);
    if (entries.contains(file.parent_path())) return std::make_error_code(std::errc::not_a_directory);
    if (!folders.contains(file.parent_path()))
        return std::make_error_code(std::errc::no_such_file_or_directory);
    if (folders.contains(file)) return std::make_error_code(std::errc::is_a_directory);
    auto& entry = entries.try_emplace(file, File{.content = {}, .mode = 0600}).first->second;
    entry.content = content;
    if (writesLeft) --*writesLeft;
    return {};
}

std::error_code InMemoryFileManager::makeFolders(path const& folder) const {
    if (folders.contains(folder)) return {};
    if (entries.contains(folder)) return std::make_error_code(std::errc::file_exists);
    auto const parent = folder.parent_path();
    if (entries.contains(parent)) return std::make_error_code(std::errc::not_a_directory);
    if (!parent.empty() && parent != folder) {
        if (auto const failure = makeFolders(parent)) return failure;
    }
    folders.insert(folder);
    return {};
}

} // namespace Platform
