#include "Applications/Companion/ManualTexts.h"

#include "Applications/Companion/TextLookup.h"
#include "Applications/Companion/Texts.h"

namespace Companion::Texts {

std::string manualTitle() {
    return text("manual-title");
}

std::string nameHeading() {
    return text("manual-name");
}

std::string synopsisHeading() {
    return text("manual-synopsis");
}

std::string descriptionHeading() {
    return text("manual-description");
}

std::string manualCommandsHeading() {
    return text("manual-commands");
}

std::string manualArgumentsHeading() {
    return text("manual-arguments");
}

std::string manualOptionsHeading() {
    return text("manual-options");
}

std::string manualExamplesHeading() {
    return text("manual-examples");
}

std::string exitStatusHeading() {
    return text("manual-exit-status");
}

std::string environmentHeading() {
    return text("manual-environment");
}

std::string seeAlsoHeading() {
    return text("manual-see-also");
}

std::string programSummary() {
    return text("manual-program-summary");
}

std::vector<ManualEntry> exitStatuses() {
    return {{"0", exitDone()}, {"1", exitFailed()}, {"2", exitWrongUse()}, {"130", exitInterrupted()}};
}

std::vector<ManualEntry> environmentVariables() {
    return {{"NO_COLOR", text("manual-no-color")},
            {"LANG", text("manual-language")},
            {"TZ", text("manual-zone")},
            {"XDG_CONFIG_HOME", text("manual-configuration-home")},
            {"XDG_DATA_HOME", text("manual-data-home")},
            {"QUILLORA_GROUP_CONTAINER", text("manual-container")},
            {"QUILLORA_LOG", text("manual-log")}};
}

} // namespace Companion::Texts
