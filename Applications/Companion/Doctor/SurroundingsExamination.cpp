#include "Applications/Companion/Doctor/Examinations.h"

#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Composition/BundleSurvey.h"
#include "Foundation/TimeZone.h"
#include "Platform/SessionBus/BusNameState.h"
#include "Platform/WidgetHost/WidgetBus.h"

namespace Companion::Doctor {

namespace {

void examineBus(Foundation::Environment const& environment, Findings& findings) {
    switch (Platform::busNameState(environment, Platform::WidgetBus::applicationIdentifier)) {
    case Platform::BusNameState::noBus: findings.note("bus", Texts::noBus()); return;
    case Platform::BusNameState::busUnreachable:
        findings.broken("bus", Texts::busIsUnreachable(), Texts::mendBus());
        return;
    case Platform::BusNameState::absent:
    case Platform::BusNameState::startable:
        findings.works("bus", Texts::busWorks());
        findings.note("widget", Texts::noWidgetRuns(), Texts::widgetCommand());
        return;
    case Platform::BusNameState::owned:
        findings.works("bus", Texts::busWorks());
        findings.works("widget", Texts::widgetRuns());
        return;
    }
}

void examineTexts(Foundation::Environment const& environment, Findings& findings) {
    for (auto const& bundle : Composition::surveyBundles(environment)) {
        if (!bundle.folder)
            findings.broken("texts", Texts::bundleIsMissing(bundle.name), Texts::mendInstallation());
        else if (!bundle.problems.empty())
            findings.broken("texts", Texts::bundleIsDamaged(bundle.problems.size(), bundle.problems.front()),
                            Texts::mendInstallation());
        else
            findings.works("texts", Texts::bundleWorks(shownPath(*bundle.folder)));
    }
}

// What TZ asks for, without the colon that some write before it.
std::string askedZone(Foundation::Environment const& environment) {
    auto const zone = environment.value("TZ").value_or("");
    return zone.starts_with(':') ? zone.substr(1) : zone;
}

void examineZone(Foundation::Environment const& environment, Findings& findings) {
    auto const zone = Foundation::TimeZone::current(environment).identifier();
    auto const asked = askedZone(environment);
    if (!Foundation::TimeZone::named("Europe/Madrid"))
        findings.broken("zone", Texts::noZoneData(), Texts::installZonesCommand());
    else if (!asked.empty() && !asked.ends_with(zone))
        findings.broken("zone", Texts::zoneIsUnknown(asked, zone), Texts::mendZone());
    else
        findings.works("zone", Texts::zoneIs(zone));
}

} // namespace

void examineSurroundings(Foundation::Environment const& environment, Findings& findings) {
    examineBus(environment, findings);
    examineTexts(environment, findings);
    examineZone(environment, findings);
}

} // namespace Companion::Doctor
