#pragma once

#include "Platform/Desktop/FaceWindow.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"
#include "Platform/WidgetHost/ResidentHost.h"
#include "WidgetExtension/ScheduleWidgetView.h"

namespace Widget {

/// What the window shows of a view, and what it tells of the meet under the pointer. A placeholder knows no
/// meets, so it must not say that there are none: it shows the header alone.
Platform::FaceWindowContent faceContent(WidgetExtension::ScheduleWidgetView const& view,
                                        Platform::EntryKind kind, Platform::HTMLReader const& reader,
                                        Platform::MainExecutor& mainExecutor);

} // namespace Widget
