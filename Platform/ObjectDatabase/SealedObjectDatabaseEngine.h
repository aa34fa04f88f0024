#pragma once

#include "Platform/Clock/Clock.h"
#include "Platform/ObjectDatabase/DatabaseFile.h"
#include "Platform/ObjectDatabase/ObjectDatabaseEngine.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Platform {

/// Databases in sealed files: encrypted as a whole, replaced as a whole, the plain text never on the disk.
/// Any number of processes and threads may use the same one.
///
/// Deleting moves the files to a quarantine beside them. After a failed opening it takes away only the very
/// file that failed: when another process has put a good one in its place meanwhile, that one stays.
class SealedObjectDatabaseEngine final : public ObjectDatabaseEngine {
public:
    /// How long one operation waits for what passes by itself.
    static constexpr std::chrono::milliseconds usualPatience{10'000};

    /// The place for databases is `Quillora` in the data home; absent where that is.
    SealedObjectDatabaseEngine(std::optional<std::filesystem::path> dataHome,
                               std::shared_ptr<Clock const> clock,
                               std::chrono::milliseconds patience = usualPatience);

    [[nodiscard]] std::optional<std::filesystem::path> defaultFileURL() const override;
    [[nodiscard]] std::expected<std::shared_ptr<ObjectDatabase>, ObjectDatabaseError>
    open(ObjectDatabaseConfiguration const& configuration) override;
    std::expected<bool, ObjectDatabaseError>
    deleteFiles(ObjectDatabaseConfiguration const& configuration) override;

private:
    std::expected<bool, ObjectDatabaseError> movedAway(std::filesystem::path const& path);
    [[nodiscard]] std::optional<DatabaseFileStamp> unopened(std::filesystem::path const& path) const;
    void remember(std::filesystem::path const& path, std::optional<DatabaseFileStamp> stamp);

    std::optional<std::filesystem::path> dataHome;
    std::shared_ptr<Clock const> clock;
    std::chrono::milliseconds patience;
    mutable std::mutex mutex;
    std::map<std::filesystem::path, DatabaseFileStamp> unopenedFiles; // Each that failed to open last.
};

} // namespace Platform
