#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Locale.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Desktop/DetailDialog.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"

namespace Widget {

/// All that is told of a meet that the person opens: its title, or its calendar's where it has none; days and
/// times on the clocks of `calendar`, place, calendar, and what the description says first. Its links are
/// those web links, the first few, that stand in its link, its place and its description. All of it is
/// harmless.
Platform::DetailPage meetPage(Meetings::MeetEntity const& meet, Foundation::Calendar const& calendar,
                              Foundation::Locale const& locale, Platform::HTMLReader const& reader,
                              Platform::MainExecutor& mainExecutor);

} // namespace Widget
