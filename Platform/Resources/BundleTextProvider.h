#pragma once

#include "Platform/Resources/BundleLookup.h"
#include "Platform/Resources/TextProvider.h"

#include "Foundation/Environment.h"

#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// The texts of a package's bundle. The bundle is looked up once, on first use; where there is none the
/// process ends then. May be used from any thread.
class BundleTextProvider final : public TextProvider {
public:
    /// `languages` as for `Bundle::open`.
    BundleTextProvider(std::string bundleName, Foundation::Environment environment, BundlePlaces places,
                       std::vector<std::string> languages);

    [[nodiscard]] std::string text(std::string_view key) const override;

    /// The bundle itself, for what else it holds and for its problems.
    [[nodiscard]] Bundle const& bundle() const;

private:
    std::string bundleName;
    Foundation::Environment environment;
    BundlePlaces places;
    std::vector<std::string> languages;
    mutable std::once_flag lookedUp;
    mutable std::optional<Bundle> found;
};

} // namespace Platform
