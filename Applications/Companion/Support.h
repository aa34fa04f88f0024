#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Composition/LiveServices.h"
#include "Foundation/Calendar.h"
#include "Platform/Defaults/UserDefaults.h"
#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/ConsentRecord.h"
#include "Platform/Files/WriteWitness.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What several commands do alike.
namespace Companion {

/// The live parts of a command that looks at the calendars: access is asked for on the terminal.
std::unique_ptr<Composition::LiveServices> liveServices(Invocation const& invocation,
                                                        std::optional<Foundation::Date> fixedMoment = {});

/// The same with options of one's own; how access is asked for is set, and where log records go unless they
/// say.
std::unique_ptr<Composition::LiveServices> liveServices(Invocation const& invocation,
                                                        Composition::LiveServicesOptions options);

/// Throw CommandError with ExitCode::failed when the environment names no home.
std::shared_ptr<Platform::CalendarStoreConfiguration const>
requiredConfiguration(Composition::LiveServices& services);
std::shared_ptr<Platform::ConsentRecord const> requiredConsent(Composition::LiveServices& services);
std::shared_ptr<Platform::UserDefaults> requiredDefaults(Composition::LiveServices& services);

/// Throws CommandError with ExitCode::failed when a setting could not be stored.
void requireSaved(std::error_code failure);

/// `text` as an absolute path without "." and ".."; relative ones start at the working directory.
std::filesystem::path absolutePath(std::string_view text);

/// A path as it may be shown: valid UTF-8 that cannot break a line.
std::string shownPath(std::filesystem::path const& path);

/// Why a choice was not kept, as the end of a sentence: the file that could not be written, with the cause.
std::string whyNotKept(Platform::WriteWitness const& files);

/// Rows of texts as aligned lines, two blanks between the columns, each text made harmless.
std::string alignedColumns(std::vector<std::vector<std::string>> const& rows, std::string_view indent = "");

/// A whole number as typed. Throws CommandError with ExitCode::wrongUse naming `option`.
std::int64_t wholeNumber(std::string_view option, std::string_view text);

/// A moment as typed: ISO 8601, on the calendar's clocks when it bears no offset. Throws as above.
Foundation::Date moment(std::string_view option, std::string_view text, Foundation::Calendar const& calendar);

/// A civil day as typed, "2026-03-11". Throws as above.
std::chrono::local_days civilDay(std::string_view option, std::string_view text);

} // namespace Companion
