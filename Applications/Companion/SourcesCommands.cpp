#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <algorithm>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;

namespace {

std::vector<Platform::CalendarRoot> shownRoots(Invocation const& invocation,
                                               Platform::CalendarStoreConfiguration const& configuration) {
    auto content = configuration.load();
    if (content.problem)
        invocation.console.report(Texts::problemOf(shownPath(configuration.file()), *content.problem));
    return std::move(content.roots);
}

// For a change, which is refused when the list must stay as it is. What is damaged does not hinder it.
std::vector<Platform::CalendarRoot>
changeableRoots(Invocation const& invocation, Platform::CalendarStoreConfiguration const& configuration) {
    auto content = configuration.load();
    if (content.problem) {
        auto const problem = Texts::problemOf(shownPath(configuration.file()), *content.problem);
        if (!content.mayBeChanged) throw CommandError::failed(problem);
        invocation.console.report(problem);
    }
    return std::move(content.roots);
}

ExitCode list(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const roots = shownRoots(invocation, *requiredConfiguration(*services));
    if (invocation.values.has("--json")) {
        JSON::Array sources;
        for (auto const& root : roots) {
            sources.emplace_back(JSON::Object{{"id", root.id},
                                              {"kind", root.kind},
                                              {"path", Foundation::Text::sanitizedUTF8(root.path.string())},
                                              {"title", root.title}});
        }
        invocation.console.writeLine(
            plainJSON(JSON::Object{{"version", 1}, {"sources", std::move(sources)}}));
        return ExitCode::done;
    }
    if (roots.empty()) {
        invocation.console.writeLine(Texts::noSources());
        return ExitCode::done;
    }
    std::vector<std::vector<std::string>> rows;
    for (auto const& root : roots)
        rows.push_back({root.id, root.title, shownPath(root.path)});
    invocation.console.write(alignedColumns(rows));
    return ExitCode::done;
}

ExitCode add(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const configuration = requiredConfiguration(*services);
    auto const folder = absolutePath(invocation.values.arguments().front());
    if (auto const reason = whyNotAFolder(folder)) throw CommandError::wrongUse(*reason);
    auto const roots = changeableRoots(invocation, *configuration);
    if (auto const* known = rootAt(folder, roots))
        throw CommandError::wrongUse(Texts::sourceIsKnown(shownPath(folder), known->title));
    auto const title = invocation.values.option("--title");
    if (title && Foundation::Text::trimmingWhitespacesAndNewlines(*title).empty())
        throw CommandError::wrongUse(Texts::blankTitle());

    auto const root = configuration->add(folder, title);
    if (!root) throw CommandError::failed(root.error());
    services->widgetCenter()->reloadAllTimelines();
    invocation.console.writeLine(Texts::sourceAdded(root->title, shownPath(root->path), root->id));
    if (!holdsCalendarFiles(folder))
        invocation.console.report(Texts::folderHoldsNoCalendars(shownPath(folder)));
    return ExitCode::done;
}

// The root that a person means by its id or its folder; nullptr when there is none.
Platform::CalendarRoot const* rootCalled(std::string const& name,
                                         std::vector<Platform::CalendarRoot> const& roots) {
    auto const byId = std::ranges::find(roots, name, &Platform::CalendarRoot::id);
    return byId != roots.end() ? &*byId : rootAt(absolutePath(name), roots);
}

ExitCode remove(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const configuration = requiredConfiguration(*services);
    auto const& name = invocation.values.arguments().front();
    auto const roots = changeableRoots(invocation, *configuration);
    auto const* known = rootCalled(name, roots);
    if (known == nullptr) throw CommandError::wrongUse(Texts::unknownSource(name));

    auto const root = configuration->remove(known->id);
    if (!root) throw CommandError::failed(root.error());
    services->widgetCenter()->reloadAllTimelines();
    invocation.console.writeLine(Texts::sourceRemoved(root->title, shownPath(root->path)));
    return ExitCode::done;
}

} // namespace

Command sourcesGroup() {
    return {
        .path = "sources",
        .summary = "the folders that your calendars are read from",
        .description =
            "A source is a folder of iCalendar files: one sub-folder a calendar with one .ics file "
            "an event, as synchronising programs keep them, or whole calendars as .ics files. "
            "Quillora reads them where they are.",
    };
}

Command sourcesListCommand() {
    return {
        .path = "sources list",
        .summary = "list the calendar folders",
        .description = "Lists the folders that were added, each with its short id, title and path.",
        .options = {{.name = "--json", .help = "print one JSON document for programs"}},
        .examples = {{"quillora sources list", "prints for example \"k3fa  Home  /home/ann/.calendars\""}},
        .run = list,
    };
}

Command sourcesAddCommand() {
    return {
        .path = "sources add",
        .summary = "add a folder of calendars",
        .description = "Adds a folder whose calendars are shown from now on. Nothing is copied or changed in "
                       "it. A folder that is missing, unreadable or added already is refused.",
        .options = {{.name = "--title",
                     .valueName = "TITLE",
                     .help = "what to call it; its name unless given"}},
        .arguments = {{.name = "DIR", .help = "the folder", .kind = ValueKind::folder}},
        .examples = {{"quillora sources add ~/.calendars",
                      "shows the calendars that another program keeps there"},
                     {"quillora sources add ~/Exports --title \"Old job\"",
                      "the same under a title of your own"}},
        .run = add,
    };
}

Command sourcesRemoveCommand() {
    return {
        .path = "sources remove",
        .summary = "stop reading a folder of calendars",
        .description = "Takes a folder off the list. The folder and its files stay as they are.",
        .arguments = {{.name = "ID|PATH",
                       .help = "the id that \"quillora sources list\" shows, or the folder",
                       .kind = ValueKind::source}},
        .examples = {{"quillora sources remove ~/.calendars", "its calendars are no longer shown"}},
        .run = remove,
    };
}

} // namespace Companion
