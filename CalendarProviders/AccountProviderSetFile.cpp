#include "CalendarProviders/AccountProviderSetFile.h"

#include "Foundation/JSON.h"

#include <utility>

namespace JSON = Foundation::JSON;

namespace CalendarProviders::AccountProviderSetFile {

std::set<AccountProviderEnum> load(Platform::FileManager const& files, std::filesystem::path const& path) {
    auto const content = files.contents(path, Platform::largestPreferenceFile);
    if (!content) return {};
    auto const document = JSON::parse(*content);
    if (!document) return {};
    auto const texts = JSON::textList(*document);
    if (!texts) return {};

    std::set<AccountProviderEnum> providers;
    for (auto const& text : *texts) {
        auto const provider = Foundation::fromRawValue<AccountProviderEnum>(text);
        if (provider) providers.insert(*provider);
    }
    return providers;
}

void save(Platform::FileManager const& files, std::filesystem::path const& path,
          std::set<AccountProviderEnum> const& providers) {
    JSON::Array texts;
    for (auto const provider : providers)
        texts.emplace_back(Foundation::rawValue(provider));
    auto const document = JSON::serialize(std::move(texts));
    if (!document) return;
    static_cast<void>(files.writeAtomically(path, *document));
}

} // namespace CalendarProviders::AccountProviderSetFile
