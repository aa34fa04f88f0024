#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the parts that both programs share say, from the tables in Resources/. None ends with a line feed.
namespace Composition::Texts {

/// Speaks these languages from now on, best first. English until then. Once, before other threads are
/// started.
void useLanguages(std::vector<std::string> const& languages);

/// `message` of a part that speaks English, such as the calendar store or the system, in the person's
/// language; as it came where it is not known.
std::string told(std::string_view message);

/// What a person typed or a calendar says, in quotation marks, made harmless and short enough for one line.
std::string quoted(std::string_view value);

// When something takes place.
std::string allDay();
std::string fromTo(std::string_view first, std::string_view last);
std::string dayAndTime(std::string_view day, std::string_view time);

std::string noHomeForCalendars();
std::string noHomeForKeychain();
std::string unreadableKeychainChoice(std::string_view path, std::string_view reason);
std::string noKeychainNamed(std::string_view path);
std::string keychainChoiceNotSaved(std::string_view path, std::string_view reason);
std::string keyNotCopied(std::int32_t status, std::string_view database);
std::string tokenNotCarried(std::string_view backend, std::int32_t status);
std::string oldCopyInKeyring(std::string_view service);
std::string oldCopyInFile(std::string_view file);
std::string registryIsBusy(std::int64_t seconds, std::string_view lockFile);
std::string registryNotLocked(std::string_view lockFile, std::string_view reason);
std::string unreadableBackend(std::string_view path, std::string_view reason);
std::string noBackendNamed(std::string_view path);

} // namespace Composition::Texts
