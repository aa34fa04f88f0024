#pragma once

#include "Platform/Keychain/KeychainStatus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the commands on the backend say. Titles, addresses and names come as they are and are made harmless
/// here.
namespace Companion::Texts {

std::string noBackend();
std::string loginNeedsURL();
std::string notABackend(std::string_view url);
std::string backendWithUser();
std::string backendWithQuery(std::string_view url);
std::string backendIsNotEncrypted(std::string_view host);
std::string askForToken(std::string_view url);
std::string askForAnyToken();
std::string nowhereToTypeTheToken();
std::string notADescriptor();
std::string unreadableToken(std::int64_t descriptor, std::string_view reason);
std::string noToken();
std::string badToken();
std::string tokenNotKept(Platform::KeychainStatus status, bool isFile);
std::string tokenNotRemoved(std::string_view url, Platform::KeychainStatus status, bool isFile);
/// `urlToLogInAt` is the word for a shell where the address is another than the one that is logged in to.
std::string tokenIsMissing(std::string_view url, Platform::KeychainStatus status,
                           std::optional<std::string> const& urlToLogInAt);
std::string oldTokenStays(std::string_view url);
std::string loggedIn(std::string_view url);
std::string loggedOut(std::string_view url);
std::string loggedOutOfUnknown(std::string_view path);
std::string notLoggedIn();
std::string logSwitched(bool isEnabled, std::string_view path);
std::string logState(bool isEnabled, std::string_view path);
std::string logIsNoFile(std::string_view path);
std::string waitingFor(std::string_view url, std::int64_t seconds);
std::string interruptedReading();
std::string interruptedBeforeAChange();
std::string interruptedWriting(std::string_view whatWasNotDone);
std::string unlessDoneAllTheSame(std::string_view whatWasNotDone);
std::string meetsNotListed();
std::string noMeets();
std::string minutesLong(std::int64_t minutes);
std::string nothingToEditInMeet();
std::string backendNeedsATime();
std::string severalBackendMeets(std::string_view id);
std::string backendMeetNotAdded(std::string_view title);
std::string backendMeetAdded(std::string_view title, std::string_view id);
std::string backendMeetNotChanged(std::string_view id);
std::string repetitionWouldBeLost(std::string_view whatWasNotDone, std::string_view repetition);
std::string backendMeetChanged(std::string_view title, std::string_view id);
std::string backendMeetNotDeleted(std::string_view id);
std::string deletingNeedsYes();
std::string deleteMeet(std::string_view title, std::string_view start);
std::string meetKept(std::string_view title);
std::string backendMeetDeleted(std::string_view title, std::string_view id);
std::string noReasonGiven(std::int64_t status);
std::string tokenIsRefused(bool isFromKeychain);
std::string nothingAtTheAddress(std::string_view url);
std::string noSuchBackendMeet();
std::string repetitionIsUnknown(std::string_view repetition);
std::string calendarsAreMissing();
std::string backendIsMissing();
std::string withReason(std::string_view what, std::string_view reason);

} // namespace Companion::Texts
