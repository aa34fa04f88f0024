#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Doctor/CalendarProblems.h"
#include "Applications/Companion/Doctor/Examinations.h"
#include "Applications/Companion/DoctorTexts.h"
#include "Applications/Companion/EndingSignals.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/ShellWord.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Companion/WaitingLine.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace Companion {

namespace JSON = Foundation::JSON;
using Doctor::Finding;
using Doctor::Findings;
using Doctor::Health;

namespace {

void examineHome(std::filesystem::path const& folder, Findings& findings) {
    auto const shown = shownPath(folder);
    if (::access(folder.c_str(), R_OK | W_OK | X_OK) == 0 || errno == ENOENT)
        findings.works("home", Texts::homeIsKnown(shown));
    else
        findings.broken("home",
                        Texts::homeIsClosed(shown, std::error_code(errno, std::generic_category()).message()),
                        Texts::makeWritableCommand(shellWord(folder.string())));
}

// The keyring may let wait.
void examineAwaitedRegistry(Composition::LiveServices& services, Findings& findings) {
    Composition::LiveRegistryServices registryServices(services);
    ShownWait const wait(whatKeepsSecrets(registryServices), services.environment());
    examineRegistry(services, findings);
}

Findings examined(Foundation::Environment const& environment) {
    auto const problems = std::make_shared<Doctor::CalendarProblems>();
    Composition::LiveServices services(environment,
                                       {.fixedMoment = std::nullopt,
                                        .consentPrompt = nullptr, // Nobody is asked anything.
                                        .logSink = problems,
                                        .missingSharedFolder = Composition::SharedFolder::isLeftMissing});
    Findings findings;
    if (auto const places = services.calendarPlaces()) {
        examineHome(places->configurationDirectory, findings);
        examineAwaitedRegistry(services, findings);
        examineCalendars(services, *problems, findings);
        examineSharedFolder(services, findings);
        examineAlarms(services, findings);
    } else {
        findings.broken("home", Texts::noHome(), Texts::mendHome());
    }
    examineSurroundings(environment, findings);
    return findings;
}

std::string_view healthName(Health health) {
    switch (health) {
    case Health::works: return "works";
    case Health::note: return "note";
    case Health::broken: return "broken";
    }
    return "";
}

JSON::Value document(std::vector<Finding> const& findings, bool isHealthy) {
    JSON::Array checks;
    for (auto const& finding : findings) {
        JSON::Object check = {
            {"check", finding.subject}, {"health", healthName(finding.health)}, {"text", finding.text}};
        if (!finding.mend.empty()) check.emplace_back("mend", finding.mend);
        checks.emplace_back(std::move(check));
    }
    return JSON::Object{{"version", 1}, {"healthy", isHealthy}, {"checks", std::move(checks)}};
}

std::string page(std::vector<Finding> const& findings) {
    std::vector<std::vector<std::string>> rows;
    for (auto const& finding : findings) {
        rows.push_back({Texts::doctorHealth(finding.health == Health::broken, finding.health == Health::note),
                        std::string(finding.subject), finding.text});
        if (!finding.mend.empty()) rows.push_back({"", "", Texts::doctorMend(finding.mend)});
    }
    return alignedColumns(rows);
}

ExitCode run(Invocation const& invocation) {
    EndingSignals const signals(Texts::interruptedBeforeAChange());
    auto const findings = examined(invocation.environment);
    auto const broken =
        static_cast<std::size_t>(std::ranges::count(findings.all(), Health::broken, &Finding::health));
    if (invocation.values.has("--json")) {
        invocation.console.writeLine(plainJSON(document(findings.all(), broken == 0)));
    } else {
        invocation.console.write(page(findings.all()));
        if (broken == 0) invocation.console.writeLine(Texts::doctorIsContent());
    }
    if (broken != 0) throw CommandError::failed(Texts::doctorFound(broken));
    return ExitCode::done;
}

} // namespace

Command doctorCommand() {
    return {
        .path = "doctor",
        .summary = Texts::text("doctor-summary"),
        .description = Texts::text("doctor-description"),
        .options = {{.name = "--json", .help = Texts::text("option-json")}},
        .examples = {{"quillora doctor", Texts::text("doctor-example-1")},
                     {"quillora doctor --json", Texts::text("doctor-example-2")}},
        .run = run,
    };
}

} // namespace Companion
