#pragma once

#include "Applications/Widget/WidgetState.h"
#include "Foundation/Environment.h"
#include "Platform/Files/FileManager.h"
#include "Platform/Logging/Logger.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace Widget {

/// The folder for what Quillora's windows remember: quillora in the state home (XDG Base Directory). Absent
/// when neither XDG_STATE_HOME nor HOME is an absolute path.
std::optional<std::filesystem::path> stateFolder(Foundation::Environment const& environment);

/// The file in which the widget's state lies from one run to the next: {"version":1,"family":"small",
/// "place":{"x":40,"y":60}}, each but the version left out where there is none.
class WidgetStateStore final {
public:
    /// `folder` is made by the first save.
    WidgetStateStore(std::filesystem::path const& folder, std::shared_ptr<Platform::FileManager const> files,
                     Platform::Logger logger);

    /// Nothing where there is no file. Of a file that cannot be read, is damaged or of another version
    /// nothing is taken either, and the log says so; it stays as it is until the next save.
    [[nodiscard]] WidgetState load() const;

    /// Replaces the file. A failure is logged; the old file stays then.
    void save(WidgetState const& state) const;

private:
    std::filesystem::path file;
    std::shared_ptr<Platform::FileManager const> files;
    Platform::Logger logger;
};

} // namespace Widget
