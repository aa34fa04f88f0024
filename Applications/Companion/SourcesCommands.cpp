#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <algorithm>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;

namespace {

std::vector<Platform::CalendarRoot> shownRoots(Invocation const& invocation,
                                               Platform::CalendarStoreConfiguration const& configuration) {
    auto content = configuration.load();
    if (content.problem) {
        auto const problem = Texts::problemOf(shownPath(configuration.file()), *content.problem);
        // Nothing is known then, which is not the same as that there is none.
        if (content.roots.empty()) throw CommandError::failed(problem);
        invocation.console.report(problem);
    }
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
    // The product's own calendar is no source but shown like one.
    std::vector<Platform::CalendarRoot> const own{{.kind = Platform::folderRootKind,
                                                   .id = "",
                                                   .path = services->calendarPlaces()->nativeCalendar,
                                                   .title = ""}};
    if (rootAt(folder, own) != nullptr)
        throw CommandError::wrongUse(Texts::sourceIsOwnCalendar(shownPath(folder)));
    auto const title = invocation.values.option("--title");
    if (title && Foundation::Text::trimmingWhitespacesAndNewlines(*title).empty())
        throw CommandError::wrongUse(Texts::blankTitle());

    auto const root = configuration->add(folder, title);
    if (!root) throw CommandError::failed(Texts::told(root.error()));
    services->widgetCenter()->reloadAllTimelines();
    invocation.console.confirmLine(Texts::sourceAdded(root->title, shownPath(root->path), root->id));
    if (!holdsCalendarFiles(folder))
        invocation.console.report(Texts::folderHoldsNoCalendars(shownPath(folder)));
    for (auto const* others : {&roots, &own}) {
        if (auto const nested = nestedSources(folder, *others))
            invocation.console.report(
                Texts::sourcesAreNested(shownPath(nested->inner), shownPath(nested->outer), root->id));
    }
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
    if (!root) throw CommandError::failed(Texts::told(root.error()));
    services->widgetCenter()->reloadAllTimelines();
    invocation.console.confirmLine(Texts::sourceRemoved(root->title, shownPath(root->path)));
    return ExitCode::done;
}

} // namespace

Command sourcesListCommand() {
    return {
        .path = "sources list",
        .summary = Texts::text("sources-list-summary"),
        .description = Texts::text("sources-list-description"),
        .options = {{.name = "--json", .help = Texts::text("option-json")}},
        .examples = {{"quillora sources list", Texts::text("sources-list-example-1")}},
        .run = list,
    };
}

Command sourcesAddCommand() {
    return {
        .path = "sources add",
        .summary = Texts::text("sources-add-summary"),
        .description = Texts::text("sources-add-description"),
        .options = {{.name = "--title",
                     .valueName = "TITLE",
                     .help = Texts::text("sources-add-option-title")}},
        .arguments = {{.name = "DIR",
                       .help = Texts::text("sources-add-argument-dir"),
                       .kind = ValueKind::folder}},
        .examples = {{"quillora sources add ~/.calendars", Texts::text("sources-add-example-1")},
                     {"quillora sources add ~/Exports --title \"Old job\"",
                      Texts::text("sources-add-example-2")}},
        .run = add,
    };
}

Command sourcesRemoveCommand() {
    return {
        .path = "sources remove",
        .summary = Texts::text("sources-remove-summary"),
        .description = Texts::text("sources-remove-description"),
        .arguments = {{.name = "ID|PATH",
                       .help = Texts::text("sources-remove-argument-id-path"),
                       .kind = ValueKind::source}},
        .examples = {{"quillora sources remove ~/.calendars", Texts::text("sources-remove-example-1")}},
        .run = remove,
    };
}

} // namespace Companion
