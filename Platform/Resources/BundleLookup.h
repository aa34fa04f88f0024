#pragma once

#include "Platform/Resources/Bundle.h"

#include "Foundation/Environment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Where a program's resources may lie. A folder that cannot be found out is absent.
struct BundlePlaces {
    std::optional<std::filesystem::path> mainResources;    ///< The program's resource folder.
    std::optional<std::filesystem::path> packageResources; ///< The folder of the package's own code.
    std::optional<std::filesystem::path> mainFolder;       ///< The program's own folder.

    /// The places of this process: those beside its executable, and the folder of the object file that holds
    /// `marker` (the address of anything in the package).
    static BundlePlaces ofProcess(void const* marker);

    /// The places beside an executable in `folder`: `../share/quillora`, and the folder itself. A program
    /// that stands in `libexec/quillora` is a part of those in `bin` of the same prefix and has their places.
    static BundlePlaces ofExecutableIn(std::filesystem::path const& folder);

    bool operator==(BundlePlaces const&) const = default;
};

/// Finds the resource bundle of a package.
namespace BundleLookup {

/// The folders to look in, in order: the override, if there is one, then the places that are known. The
/// override is `PACKAGE_RESOURCE_BUNDLE_PATH`, else `PACKAGE_RESOURCE_BUNDLE_URL`, a path in both cases; set
/// to nothing it is the current folder, and a relative one starts there.
std::vector<std::filesystem::path> candidates(Foundation::Environment const& environment,
                                              BundlePlaces const& places);

/// Opens `<name>.bundle` in the first candidate that has it; absent where none has.
std::optional<Bundle> findBundle(std::string_view name, Foundation::Environment const& environment,
                                 BundlePlaces const& places, std::vector<std::string> const& languages);

/// The same for a bundle without which there is no going on: where no candidate has it, the process ends with
/// "unable to find bundle named <name>".
Bundle packageBundle(std::string_view name, Foundation::Environment const& environment,
                     BundlePlaces const& places, std::vector<std::string> const& languages);

} // namespace BundleLookup
} // namespace Platform
