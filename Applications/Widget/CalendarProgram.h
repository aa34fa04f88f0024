#pragma once

#include "Platform/Desktop/DetailDialog.h"
#include "Platform/Workspace/Workspace.h"

#include <functional>

namespace Widget {

/// Opens the program that the person uses for calendars. `tell` is given a page that says so and what helps
/// where there is none, or why it did not open; perhaps within the call.
void openCalendarProgram(Platform::Workspace& workspace,
                         std::function<void(Platform::DetailPage const&)> tell);

} // namespace Widget
