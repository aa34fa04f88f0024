#include "Applications/Composition/ProgramTexts.h"

#include "Foundation/Environment.h"
#include "Platform/Resources/BundleLookup.h"
#include "Platform/Resources/TextPlaceholders.h"

#include <utility>

namespace Composition {

ProgramTexts::ProgramTexts(std::string bundleName, void const* marker, std::string_view english)
    : bundleName(std::move(bundleName)),
      marker(marker),
      english(Platform::StringsFile::parse(english)) {}

void ProgramTexts::useLanguages(std::vector<std::string> const& languages) {
    // The program's own bundle belongs to no package: no variable names another place for it.
    bundle = Platform::BundleLookup::findBundle(bundleName, Foundation::Environment(),
                                                Platform::BundlePlaces::ofProcess(marker), languages);
}

std::string ProgramTexts::text(std::string_view key, std::vector<std::string> const& values) const {
    auto found = bundle ? bundle->find(key) : std::nullopt;
    if (!found) found = english.find(key);
    return Platform::withValues(found.value_or(std::string(key)), values);
}

std::string ProgramTexts::counted(std::string_view key, std::int64_t count,
                                  std::vector<std::string> const& values) const {
    auto found = bundle ? bundle->findCounted(key, count) : std::nullopt;
    if (!found) found = english.findCounted(key, count, "en");
    return Platform::withValues(found.value_or(std::string(key)), values);
}

std::vector<std::string> ProgramTexts::problems() const {
    return bundle ? bundle->problems() : std::vector<std::string>();
}

} // namespace Composition
