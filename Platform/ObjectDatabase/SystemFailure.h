#pragma once

#include <system_error>

/// What an error of the system's means for a database.
namespace Platform::SystemFailure {

/// Whether the same call may well succeed a moment later: a shortage, a lock, or a storage that stumbles.
bool mayPass(std::error_code error);

/// Whether it says nothing about the database's own files, however long it lasts: something else is in short
/// supply.
bool isShortage(std::error_code error);

/// Whether it means that nothing may be written there.
bool isRefusal(std::error_code error);

/// The system's reason in English, whatever the locale.
char const* text(std::error_code error);

} // namespace Platform::SystemFailure
