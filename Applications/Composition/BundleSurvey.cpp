#include "Applications/Composition/BundleSurvey.h"

#include "Foundation/Locale.h"
#include "Meetings/BundleFinder.h"
#include "Platform/Resources/BundleLookup.h"
#include "WidgetExtension/ResourceBundleClass.h"

#include <string_view>
#include <utility>

namespace Composition {

namespace {

class Survey {
public:
    explicit Survey(std::vector<std::string> languages) : languages(std::move(languages)) {}

    void add(std::string_view name, Foundation::Environment const& overrides, void const* marker) {
        SurveyedBundle found{.name = std::string(name), .folder = std::nullopt, .problems = {}};
        auto const bundle = Platform::BundleLookup::findBundle(
            found.name, overrides, Platform::BundlePlaces::ofProcess(marker), languages);
        if (bundle) {
            found.folder = bundle->folder();
            found.problems = bundle->problems();
        }
        bundles.push_back(std::move(found));
    }

    std::vector<SurveyedBundle> bundles;

private:
    std::vector<std::string> languages;
};

constexpr char programMarker = 0;

} // namespace

std::vector<SurveyedBundle> surveyBundles(Foundation::Environment const& environment) {
    Foundation::Environment const none;
    Survey survey(Foundation::Locale::textLanguages(environment));
    // Only a package's bundle may be named another place for.
    survey.add("Companion_Companion", none, &programMarker);
    survey.add("Composition_Composition", none, &programMarker);
    survey.add(WidgetExtension::ResourceBundleClass::bundleName, none,
               WidgetExtension::ResourceBundleClass::marker());
    survey.add(Meetings::BundleFinder::bundleName, environment, Meetings::BundleFinder::marker());
    return std::move(survey.bundles);
}

} // namespace Composition
