#pragma once

#include "Platform/ObjectDatabase/ObjectDatabaseError.h"

#include <string_view>

/// The fixed texts of the errors, the same from every engine. Where a reason of the system's own matters, it
/// follows after ": ".
namespace Platform::ObjectDatabaseDescriptions {

/// A whole sentence without its full stop, since callers build longer ones from it.
constexpr std::string_view text(ObjectDatabaseError::Kind kind) {
    switch (kind) {
    case ObjectDatabaseError::Kind::noLocation: return "no location";
    case ObjectDatabaseError::Kind::keyLength: return "the encryption key is not 64 bytes long";
    case ObjectDatabaseError::Kind::wrongKeyOrDamaged:
        return "the file is damaged or was written with another key";
    case ObjectDatabaseError::Kind::foreignFile: return "the file is not a database of this program";
    case ObjectDatabaseError::Kind::schemaIsNewer:
        return "the file was written by a later version of this program";
    case ObjectDatabaseError::Kind::migrationFailed:
        return "the file's schema could not be brought up to date";
    case ObjectDatabaseError::Kind::unreadable: return "the file or its folder cannot be used";
    case ObjectDatabaseError::Kind::busy:
        return "another program keeps the database locked; nothing was written";
    case ObjectDatabaseError::Kind::storageFailed: return "the system could not carry it out";
    case ObjectDatabaseError::Kind::readOnly: return "the database can only be read; nothing was written";
    case ObjectDatabaseError::Kind::quarantineFailed: return "the database files could not be moved aside";
    case ObjectDatabaseError::Kind::transactionRefused: return "the change was given up; nothing was written";
    }
    return "";
}

} // namespace Platform::ObjectDatabaseDescriptions
