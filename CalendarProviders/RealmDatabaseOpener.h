#pragma once

#include "CalendarProviders/ResultEntity.h"
#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"

/// Opens an encrypted database, if need be in place of one that does not open.
namespace CalendarProviders::RealmDatabaseOpener {

/// Yields a `std::shared_ptr<Platform::ObjectDatabase>` for the calling thread. A database that does not open
/// is deleted, whatever the reason, and an empty one is opened with the same key: once, then it is a failure,
/// told in `databaseMessage`.
ResultEntity open(Platform::ObjectDatabaseEngine& engine,
                  Platform::ObjectDatabaseConfiguration const& configuration);

} // namespace CalendarProviders::RealmDatabaseOpener
