#pragma once

#include "Applications/Companion/CommandTable.h"

#include <string>
#include <vector>

/// What the manual pages say beside the command table.
namespace Companion::Texts {

std::string manualTitle();
std::string nameHeading();
std::string synopsisHeading();
std::string descriptionHeading();
std::string manualCommandsHeading();
std::string manualArgumentsHeading();
std::string manualOptionsHeading();
std::string manualExamplesHeading();
std::string exitStatusHeading();
std::string environmentHeading();
std::string seeAlsoHeading();
std::string programSummary();

/// A term with what it means.
struct ManualEntry {
    std::string term;
    std::string meaning;
};

/// The codes that every command ends with.
std::vector<ManualEntry> exitStatuses();

/// The variables that the program goes by.
std::vector<ManualEntry> environmentVariables();

} // namespace Companion::Texts
