#include "Applications/Companion/AlarmTexts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Text.h"
#include "Meetings/Alarms/AlarmMessageApplication.h"
#include "Meetings/Alarms/AlarmMessageDomainError.h"
#include "Meetings/Alarms/AlarmMessageTemplateError.h"
#include "Meetings/Alarms/LocalAlarmMessageTemplateRepositoryImpl.h"
#include "Meetings/Alarms/MeetAlarmModeStore.h"
#include "Meetings/Alarms/MeetAlarmVoiceLanguageStore.h"
#include "Platform/Resources/TextProvider.h"

namespace Companion {

using Meetings::MeetAlarmModeEnum;
using Meetings::MeetAlarmVoiceLanguageEnum;

namespace {

template <typename E, std::size_t count>
std::vector<std::string> rawValuesOf(std::array<E, count> const& all) {
    std::vector<std::string> names;
    for (auto const one : all)
        names.emplace_back(Foundation::rawValue(one));
    return names;
}

ExitCode mode(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const defaults = requiredDefaults(*services);
    auto const& words = invocation.values.arguments();
    if (words.empty()) {
        invocation.console.writeLine(Foundation::rawValue(Meetings::MeetAlarmModeStore::load(*defaults)));
        return ExitCode::done;
    }
    auto const chosen = Foundation::fromRawValue<MeetAlarmModeEnum>(words.front()).value();
    requireSaved(Meetings::MeetAlarmModeStore::save(chosen, *defaults));
    invocation.console.confirmLine(
        Texts::alarmModeSet(services->meetingsTexts()->text(Meetings::titleKey(chosen))));
    return ExitCode::done;
}

ExitCode voice(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const defaults = requiredDefaults(*services);
    auto const& words = invocation.values.arguments();
    if (words.empty()) {
        auto const stored = Meetings::MeetAlarmVoiceLanguageStore::load(*defaults);
        invocation.console.writeLine(Foundation::rawValue(stored));
        return ExitCode::done;
    }
    auto const chosen = Foundation::fromRawValue<MeetAlarmVoiceLanguageEnum>(words.front()).value();
    requireSaved(Meetings::MeetAlarmVoiceLanguageStore::save(chosen, *defaults));
    invocation.console.confirmLine(
        Texts::alarmVoiceSet(services->meetingsTexts()->text(Meetings::titleKey(chosen))));
    return ExitCode::done;
}

// A message of the person's own, or one with a meet's name in it, on one line.
std::string harmless(std::string_view text) {
    return Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(text));
}

void printTemplate(Invocation const& invocation, Meetings::AlarmMessageTemplateRepository const& repository) {
    std::string text;
    try {
        text = repository.get().amtText;
    } catch (Meetings::AlarmMessageTemplateError const&) {
        throw CommandError::failed(Texts::alarmTemplateUnreadable());
    }
    invocation.console.writeLine(harmless(text));
}

void saveTemplate(std::string const& text, Meetings::AlarmMessageApplication const& messages) {
    try {
        messages.saveTemplate(text);
    } catch (Meetings::AlarmMessageDomainError const&) {
        throw CommandError::wrongUse(Texts::alarmTemplateNeedsPlaceholder());
    } catch (Meetings::AlarmMessageTemplateError const& error) {
        throw CommandError::refused(Texts::alarmTemplateNotSaved(), Texts::told(error.what()));
    }
}

ExitCode messageTemplate(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const repository = std::make_shared<Meetings::LocalAlarmMessageTemplateRepositoryImpl>(
        Meetings::AlarmMessageTemplateDatabase(requiredDefaults(*services)));
    auto const& words = invocation.values.arguments();
    if (words.empty()) {
        printTemplate(invocation, *repository);
        return ExitCode::done;
    }
    saveTemplate(words.front(), Meetings::AlarmMessageApplication(repository));
    auto const announcer = Composition::AlarmAnnouncer::live(*services);
    auto const language = Meetings::MeetAlarmVoiceLanguageStore::load(*requiredDefaults(*services));
    auto const sample = announcer->sentence(Meetings::sampleMeetingName(language));
    invocation.console.confirmLine(words.front().empty() ? Texts::alarmTemplateUnset(sample)
                                                         : Texts::alarmTemplateSet(sample));
    return ExitCode::done;
}

ExitCode preview(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const defaults = requiredDefaults(*services);
    auto const announcer = Composition::AlarmAnnouncer::live(*services);
    auto const language = Meetings::MeetAlarmVoiceLanguageStore::load(*defaults);
    auto const name =
        invocation.values.option("--meet").value_or(std::string(Meetings::sampleMeetingName(language)));
    auto const sentence = announcer->sentence(name);
    if (invocation.values.has("--text")) {
        invocation.console.writeLine(harmless(sentence));
        return ExitCode::done;
    }
    auto const outcome = announcer->announce(name);
    if (!outcome) {
        invocation.console.report(Texts::announcementNotHeard(outcome.error()));
        invocation.console.writeLine(harmless(sentence));
        return ExitCode::done;
    }
    auto const chosen = Meetings::MeetAlarmModeStore::load(*defaults);
    invocation.console.writeLine(
        *outcome == Composition::AlarmAnnouncer::Outcome::spoken
            ? Texts::announcementSpoken(sentence)
            : Texts::announcementPlayed(services->meetingsTexts()->text(Meetings::titleKey(chosen))));
    return ExitCode::done;
}

} // namespace

Command alarmGroup() {
    return {
        .path = "alarm",
        .summary = Texts::text("alarm-summary"),
        .description = Texts::text("alarm-description"),
    };
}

Command alarmModeCommand() {
    return {
        .path = "alarm mode",
        .summary = Texts::text("alarm-mode-summary"),
        .description = Texts::text("alarm-mode-description"),
        .arguments = {{.name = "MODE",
                       .help = Texts::text("alarm-mode-argument-mode"),
                       .count = CommandArgument::Count::atMostOne,
                       .choices = rawValuesOf(Meetings::allMeetAlarmModes)}},
        .examples = {{"quillora alarm mode", Texts::text("alarm-mode-example-1")},
                     {"quillora alarm mode hero", Texts::text("alarm-mode-example-2")}},
        .run = mode,
    };
}

Command alarmVoiceCommand() {
    return {
        .path = "alarm voice",
        .summary = Texts::text("alarm-voice-summary"),
        .description = Texts::text("alarm-voice-description"),
        .arguments = {{.name = "LANGUAGE",
                       .help = Texts::text("alarm-voice-argument-language"),
                       .count = CommandArgument::Count::atMostOne,
                       .choices = rawValuesOf(Meetings::allMeetAlarmVoiceLanguages)}},
        .examples = {{"quillora alarm voice english", Texts::text("alarm-voice-example-1")}},
        .run = voice,
    };
}

Command alarmTemplateCommand() {
    return {
        .path = "alarm template",
        .summary = Texts::text("alarm-template-summary"),
        .description = Texts::text("alarm-template-description"),
        .arguments = {{.name = "TEXT",
                       .help = Texts::text("alarm-template-argument-text"),
                       .count = CommandArgument::Count::atMostOne}},
        .examples = {{"quillora alarm template \"{event} begins now\"",
                      Texts::text("alarm-template-example-1")},
                     {"quillora alarm template \"\"", Texts::text("alarm-template-example-2")}},
        .run = messageTemplate,
    };
}

Command alarmPreviewCommand() {
    return {
        .path = "alarm preview",
        .summary = Texts::text("alarm-preview-summary"),
        .description = Texts::text("alarm-preview-description"),
        .options = {{.name = "--meet", .valueName = "NAME", .help = Texts::text("alarm-preview-option-meet")},
                    {.name = "--text", .help = Texts::text("alarm-preview-option-text")}},
        .examples = {{"quillora alarm preview --meet \"Team sync\"", Texts::text("alarm-preview-example-1")},
                     {"quillora alarm preview --text", Texts::text("alarm-preview-example-2")}},
        .run = preview,
    };
}

} // namespace Companion
