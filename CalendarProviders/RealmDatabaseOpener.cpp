#include "CalendarProviders/RealmDatabaseOpener.h"

#include <utility>

namespace CalendarProviders::RealmDatabaseOpener {
namespace {

ResultEntity recoverByDeletingAndRetrying(Platform::ObjectDatabaseEngine& engine,
                                          Platform::ObjectDatabaseConfiguration const& configuration,
                                          Platform::ObjectDatabaseError const& openError) {
    auto const deleted = engine.deleteFiles(configuration);
    if (!deleted) {
        return failed({.databaseMessage =
                           "Open failed (" + openError.localizedDescription +
                           ") and the recovery delete also failed: " + deleted.error().localizedDescription});
    }
    auto reopened = engine.open(configuration);
    if (!reopened) {
        return failed({.databaseMessage = "Open failed (" + openError.localizedDescription +
                                          "); recreated the file but it still failed to open: " +
                                          reopened.error().localizedDescription});
    }
    return succeeded(*std::move(reopened));
}

} // namespace

ResultEntity open(Platform::ObjectDatabaseEngine& engine,
                  Platform::ObjectDatabaseConfiguration const& configuration) {
    auto opened = engine.open(configuration);
    // Emptied and opened once more, on purpose: a registration can be made again, while one that never opens
    // would lock the person out. The engine fails only for reasons that waiting does not mend.
    if (!opened) return recoverByDeletingAndRetrying(engine, configuration, opened.error());
    return succeeded(*std::move(opened));
}

} // namespace CalendarProviders::RealmDatabaseOpener
