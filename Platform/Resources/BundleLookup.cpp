#include "Platform/Resources/BundleLookup.h"

#include "Foundation/FatalError.h"

#include <system_error>
#include <utility>

#include <dlfcn.h>

namespace Platform {
namespace {

using std::filesystem::path;

std::optional<path> executableFolder() {
    std::error_code failure;
    auto const executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure || !executable.is_absolute()) return std::nullopt;
    return executable.parent_path();
}

// Programs that another one starts stand in a folder of their own, which is not searched for commands.
bool isForPartsOfPrograms(path const& folder) {
    return folder.filename() == "quillora" && folder.parent_path().filename() == "libexec";
}

std::optional<path> folderOfCode(void const* marker) {
    Dl_info info{};
    if (::dladdr(marker, &info) == 0 || info.dli_fname == nullptr) return std::nullopt;
    path const file(info.dli_fname);
    // A program found through PATH gives its bare name here, which says nothing about its folder.
    if (!file.has_parent_path()) return std::nullopt;
    std::error_code failure;
    auto const located = std::filesystem::canonical(file, failure);
    if (failure) return std::nullopt;
    return located.parent_path();
}

// Joining with the current folder keeps an absolute path as it is.
std::optional<path> fromCurrentFolder(std::string const& text) {
    path const chosen(text);
    if (chosen.is_absolute()) return chosen;
    std::error_code failure;
    auto const current = std::filesystem::current_path(failure);
    if (failure) return std::nullopt;
    return text.empty() ? current : current / chosen;
}

} // namespace

BundlePlaces BundlePlaces::ofProcess(void const* marker) {
    BundlePlaces places{
        .mainResources = std::nullopt, .packageResources = std::nullopt, .mainFolder = std::nullopt};
    if (auto const folder = executableFolder()) places = ofExecutableIn(*folder);
    places.packageResources = folderOfCode(marker);
    return places;
}

BundlePlaces BundlePlaces::ofExecutableIn(path const& folder) {
    auto const programs = isForPartsOfPrograms(folder) ? folder.parent_path().parent_path() / "bin" : folder;
    return {.mainResources = (programs / ".." / "share" / "quillora").lexically_normal(),
            .packageResources = std::nullopt,
            .mainFolder = programs};
}

std::vector<path> BundleLookup::candidates(Foundation::Environment const& environment,
                                           BundlePlaces const& places) {
    auto chosen = environment.value("PACKAGE_RESOURCE_BUNDLE_PATH");
    // Not parsed as a URL, whatever its name says, and not looked at once the other one is set.
    if (!chosen) chosen = environment.value("PACKAGE_RESOURCE_BUNDLE_URL");

    std::vector<path> folders;
    auto const append = [&](std::optional<path> folder) {
        if (folder) folders.push_back(*std::move(folder));
    };
    if (chosen) append(fromCurrentFolder(*chosen));
    append(places.mainResources);
    append(places.packageResources);
    append(places.mainFolder);
    return folders;
}

std::optional<Bundle> BundleLookup::findBundle(std::string_view name,
                                               Foundation::Environment const& environment,
                                               BundlePlaces const& places,
                                               std::vector<std::string> const& languages) {
    for (auto const& folder : candidates(environment, places)) {
        auto bundle = Bundle::open(folder / (std::string(name) + ".bundle"), languages);
        if (bundle) return bundle;
    }
    return std::nullopt;
}

Bundle BundleLookup::packageBundle(std::string_view name, Foundation::Environment const& environment,
                                   BundlePlaces const& places, std::vector<std::string> const& languages) {
    auto bundle = findBundle(name, environment, places, languages);
    if (bundle) return *std::move(bundle);
    Foundation::fatalError("unable to find bundle named " + std::string(name));
}

} // namespace Platform
