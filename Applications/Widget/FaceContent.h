#pragma once

#include "Meetings/MeetEntity.h"
#include "Platform/Desktop/FaceWindow.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"
#include "Platform/WidgetHost/ResidentHost.h"
#include "WidgetExtension/ScheduleWidgetView.h"

#include <optional>
#include <vector>

namespace Widget {

/// What a view becomes in the window.
struct FaceContent {
    Platform::FaceWindowContent shown; ///< With what is told of the meet under the pointer.
    std::vector<std::optional<Meetings::MeetEntity>> meets; ///< One for each row of the layout.
};

/// A placeholder knows no meets, so it must not say that there are none: it shows the header alone.
FaceContent faceContent(WidgetExtension::ScheduleWidgetView const& view, Platform::EntryKind kind,
                        Platform::HTMLReader const& reader, Platform::MainExecutor& mainExecutor);

} // namespace Widget
