#include "Platform/Resources/BundleTextProvider.h"

#include <utility>

namespace Platform {

BundleTextProvider::BundleTextProvider(std::string bundleName, Foundation::Environment environment,
                                       BundlePlaces places, std::vector<std::string> languages)
    : bundleName(std::move(bundleName)),
      environment(std::move(environment)),
      places(std::move(places)),
      languages(std::move(languages)) {}

std::string BundleTextProvider::text(std::string_view key) const {
    return bundle().text(key);
}

Bundle const& BundleTextProvider::bundle() const {
    std::call_once(lookedUp, [this] {
        found = BundleLookup::packageBundle(bundleName, environment, places, languages);
    });
    return *found;
}

} // namespace Platform
