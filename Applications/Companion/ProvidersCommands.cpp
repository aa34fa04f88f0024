#include "Applications/Companion/Commands.h"
#include "Applications/Companion/EndingSignals.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/ProviderTexts.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/CalendarProviderRegistryApplication.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Platform/Clock/Clock.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <functional>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;
using CalendarProviders::AccountProviderEnum;
using CalendarProviders::CalendarProviderEntity;
using Registry = CalendarProviders::CalendarProviderRegistryApplication;
using Providers = std::vector<CalendarProviderEntity>;

namespace {

// One run of a command on the registry.
struct Session {
    Invocation const& invocation;
    Composition::LiveServices& services;
    EndingSignals& signals;

    [[nodiscard]] Registry registry(std::string const& whatWasNotDone) const {
        return requiredRegistry(services, whatWasNotDone);
    }
    // The same for a command that goes on to change something.
    [[nodiscard]] Registry registryToChange(std::string const& whatWasNotDone) const {
        auto found = registry(whatWasNotDone);
        signals.say(Texts::interruptedInRegistrations());
        return found;
    }
    void say(std::string const& text) const { invocation.console.writeLine(text); }
};

// A value as typed; a shell hands over any bytes.
std::optional<std::string> typed(Invocation const& invocation, std::string_view option) {
    auto const value = invocation.values.option(option);
    if (!value) return std::nullopt;
    return Foundation::Text::sanitizedUTF8(*value);
}

std::string typedId(Invocation const& invocation) {
    return Foundation::Text::sanitizedUTF8(invocation.values.arguments().front());
}

ExitCode onRegistry(Invocation const& invocation, std::function<void(Session const&)> const& command) {
    auto const services = liveServices(invocation);
    EndingSignals signals(Texts::interruptedBeforeRegistrations());
    // A look too: it may come upon a lost key or a damaged database, and begin anew.
    auto const lock = requiredRegistryLock(*services);
    QuarantineReport const report(*services, invocation.console);
    command({.invocation = invocation, .services = *services, .signals = signals});
    return ExitCode::done;
}

void finishChange(Session const& session, Registry const& registry, std::string const& whatWasDone) {
    session.services.widgetCenter()->reloadAllTimelines();
    session.invocation.console.confirmLine(whatWasDone);
    checkMirror(session.services, registry, Texts::mirrorNotSaved);
}

JSON::Object providerValue(CalendarProviderEntity const& provider) {
    return {{"capId", provider.capId},
            {"capProvider", Foundation::rawValue(provider.capProvider)},
            {"capDisplayName", provider.capDisplayName},
            {"capDescription", provider.capDescription},
            {"capEmail", provider.capEmail},
            {"capIsEnabled", provider.capIsEnabled},
            {"capRegisteredAt", Foundation::iso8601(provider.capRegisteredAt)}};
}

void listProviders(Session const& session) {
    auto const registry = session.registry(Texts::providersNotRead());
    auto const providers = required<Providers>(registry.getAll(), Texts::providersNotRead());
    if (session.invocation.values.has("--json")) {
        JSON::Array list;
        for (auto const& provider : providers)
            list.emplace_back(providerValue(provider));
        session.say(plainJSON(JSON::Object{{"version", 1}, {"providers", std::move(list)}}));
        return;
    }
    if (providers.empty()) {
        session.say(Texts::noProviders());
        return;
    }
    std::vector<std::vector<std::string>> rows;
    for (auto const& provider : providers) {
        rows.push_back({provider.capId, provider.capDisplayName, provider.capEmail,
                        Texts::providerState(provider.capIsEnabled), provider.capDescription});
    }
    session.invocation.console.write(alignedColumns(rows));
}

void addProvider(Session const& session) {
    auto const& invocation = session.invocation;
    CalendarProviderEntity const provider = {
        .capId = typed(invocation, "--id").value(),
        .capProvider = AccountProviderEnum::eventKit,
        .capDisplayName = typed(invocation, "--name").value(),
        .capDescription = typed(invocation, "--description").value_or(""),
        .capEmail = typed(invocation, "--email").value(),
        .capIsEnabled = true,
        .capRegisteredAt = session.services.clock()->now(),
    };
    auto const notDone = Texts::providerNotRegistered(provider.capId);
    auto const registry = session.registryToChange(notDone);
    require(registry.newProvider(provider), notDone);
    finishChange(session, registry,
                 Texts::providerRegistered(provider.capDisplayName, provider.capEmail, provider.capId));
}

// Gives the registered provider of the typed id other fields, and yields it as it is then.
CalendarProviderEntity changeProvider(Session const& session, Registry const& registry,
                                      std::function<void(CalendarProviderEntity&)> const& change) {
    auto const id = typedId(session.invocation);
    auto const notDone = Texts::providerNotChanged(id);
    auto provider = required<CalendarProviderEntity>(registry.getOne(id), notDone);
    change(provider);
    require(registry.update(provider), notDone);
    return provider;
}

void editProvider(Session const& session) {
    auto const email = typed(session.invocation, "--email");
    auto const name = typed(session.invocation, "--name");
    auto const description = typed(session.invocation, "--description");
    if (!email && !name && !description) throw CommandError::wrongUse(Texts::nothingToEdit());

    auto const registry = session.registryToChange(Texts::providerNotChanged(typedId(session.invocation)));
    auto const provider = changeProvider(session, registry, [&](CalendarProviderEntity& edited) {
        if (email) edited.capEmail = *email;
        if (name) edited.capDisplayName = *name;
        if (description) edited.capDescription = *description;
    });
    finishChange(session, registry, Texts::providerChanged(provider.capDisplayName, provider.capEmail));
}

void switchProvider(Session const& session, bool isEnabled) {
    auto const registry = session.registryToChange(Texts::providerNotChanged(typedId(session.invocation)));
    auto const provider = changeProvider(
        session, registry, [&](CalendarProviderEntity& switched) { switched.capIsEnabled = isEnabled; });
    finishChange(session, registry, Texts::providerSwitched(provider.capDisplayName, isEnabled));
}

void removeProvider(Session const& session) {
    auto const id = typedId(session.invocation);
    auto const notDone = Texts::providerNotRemoved(id);
    auto const registry = session.registryToChange(notDone);
    auto const known = registry.getOne(id).dataAs<CalendarProviderEntity>();
    require(registry.deleteProvider(id), notDone);
    // That there was none is no failure, but nothing was removed then.
    finishChange(session, registry,
                 known ? Texts::providerRemoved(known->capDisplayName) : Texts::providerIsGone(id));
}

CommandArgument idArgument() {
    return {.name = "ID", .help = Texts::text("option-id")};
}

} // namespace

Command providersGroup() {
    return {
        .path = "providers",
        .summary = Texts::text("providers-summary"),
        .description = Texts::text("providers-description"),
    };
}

Command providersListCommand() {
    return {
        .path = "providers list",
        .summary = Texts::text("providers-list-summary"),
        .description = Texts::text("providers-list-description"),
        .options = {{.name = "--json", .help = Texts::text("option-json")}},
        .examples = {{"quillora providers list", Texts::text("providers-list-example-1")}},
        .run = [](Invocation const& invocation) { return onRegistry(invocation, listProviders); },
    };
}

Command providersAddCommand() {
    return {
        .path = "providers add",
        .summary = Texts::text("providers-add-summary"),
        .description = Texts::text("providers-add-description"),
        .options = {{.name = "--id",
                     .valueName = "ID",
                     .help = Texts::text("providers-add-option-id"),
                     .isRequired = true},
                    {.name = "--email",
                     .valueName = "EMAIL",
                     .help = Texts::text("providers-add-option-email"),
                     .isRequired = true},
                    {.name = "--name",
                     .valueName = "NAME",
                     .help = Texts::text("providers-add-option-name"),
                     .isRequired = true},
                    {.name = "--description",
                     .valueName = "TEXT",
                     .help = Texts::text("providers-add-option-description")}},
        .examples = {{"quillora providers add --id eventKit --email ann@host --name \"My calendars\"",
                      Texts::text("providers-add-example-1")}},
        .run = [](Invocation const& invocation) { return onRegistry(invocation, addProvider); },
    };
}

Command providersEditCommand() {
    return {
        .path = "providers edit",
        .summary = Texts::text("providers-edit-summary"),
        .description = Texts::text("providers-edit-description"),
        .options =
            {{.name = "--email", .valueName = "EMAIL", .help = Texts::text("providers-edit-option-email")},
             {.name = "--name", .valueName = "NAME", .help = Texts::text("providers-edit-option-name")},
             {.name = "--description",
              .valueName = "TEXT",
              .help = Texts::text("providers-edit-option-description")}},
        .arguments = {idArgument()},
        .examples = {{"quillora providers edit eventKit --email ann@home",
                      Texts::text("providers-edit-example-1")}},
        .run = [](Invocation const& invocation) { return onRegistry(invocation, editProvider); },
    };
}

Command providersEnableCommand() {
    return {
        .path = "providers enable",
        .summary = Texts::text("providers-enable-summary"),
        .description = Texts::text("providers-enable-description"),
        .arguments = {idArgument()},
        .examples = {{"quillora providers enable eventKit", Texts::text("providers-enable-example-1")}},
        .run =
            [](Invocation const& invocation) {
                return onRegistry(invocation, [](Session const& session) { switchProvider(session, true); });
            },
    };
}

Command providersDisableCommand() {
    return {
        .path = "providers disable",
        .summary = Texts::text("providers-disable-summary"),
        .description = Texts::text("providers-disable-description"),
        .arguments = {idArgument()},
        .examples = {{"quillora providers disable eventKit", Texts::text("providers-disable-example-1")}},
        .run =
            [](Invocation const& invocation) {
                return onRegistry(invocation, [](Session const& session) { switchProvider(session, false); });
            },
    };
}

Command providersRemoveCommand() {
    return {
        .path = "providers remove",
        .summary = Texts::text("providers-remove-summary"),
        .description = Texts::text("providers-remove-description"),
        .arguments = {idArgument()},
        .examples = {{"quillora providers remove eventKit", Texts::text("providers-remove-example-1")}},
        .run = [](Invocation const& invocation) { return onRegistry(invocation, removeProvider); },
    };
}

} // namespace Companion
