#include "Applications/Companion/Support.h"

#include "Applications/Companion/AlignedColumns.h"
#include "Applications/Companion/ConsoleLogSink.h"
#include "Applications/Companion/QuestionSignals.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/TerminalConsentPrompt.h"

#include <algorithm>
#include <charconv>
#include <unistd.h>
#include <utility>

namespace Companion {

namespace {

// Asks for consent on the terminal, where Ctrl-C ends the program as at its other questions.
class QuestionOfConsent final : public Platform::ConsentPrompt {
public:
    Foundation::Task<Platform::ConsentAnswer> ask() override {
        QuestionSignals const signals;
        // The question goes to standard error: standard output belongs to the answer.
        Platform::TerminalConsentPrompt terminal(STDIN_FILENO, STDERR_FILENO, Texts::consent());
        auto const answer = co_await terminal.ask();
        co_return answer;
    }
};

} // namespace

std::unique_ptr<Composition::LiveServices> liveServices(Invocation const& invocation,
                                                        std::optional<Foundation::Date> fixedMoment) {
    return liveServices(invocation, Composition::LiveServicesOptions{.fixedMoment = fixedMoment});
}

std::unique_ptr<Composition::LiveServices> liveServices(Invocation const& invocation,
                                                        Composition::LiveServicesOptions options) {
    options.consentPrompt = std::make_shared<QuestionOfConsent>();
    if (!options.logSink)
        options.logSink = std::make_shared<ConsoleLogSink>(invocation.console, invocation.environment);
    return std::make_unique<Composition::LiveServices>(invocation.environment, std::move(options));
}

std::shared_ptr<Platform::CalendarStoreConfiguration const>
requiredConfiguration(Composition::LiveServices& services) {
    auto configuration = services.calendarConfiguration();
    if (!configuration) throw CommandError::failed(Texts::noHome());
    return configuration;
}

std::shared_ptr<Platform::ConsentRecord const> requiredConsent(Composition::LiveServices& services) {
    auto consent = services.consent();
    if (!consent) throw CommandError::failed(Texts::noHome());
    return consent;
}

std::shared_ptr<Platform::UserDefaults> requiredDefaults(Composition::LiveServices& services) {
    auto defaults = services.userDefaults();
    if (!defaults) throw CommandError::failed(Texts::noHome());
    return defaults;
}

void requireSaved(std::error_code failure) {
    if (failure) throw CommandError::failed(Texts::settingNotSaved(failure.message()));
}

std::filesystem::path absolutePath(std::string_view text) {
    std::error_code error;
    auto const path = std::filesystem::absolute(std::filesystem::path(text), error);
    if (error) throw CommandError::wrongUse(Texts::cannotResolvePath(text, error.message()));
    auto normal = path.lexically_normal();
    return normal.has_filename() || !normal.has_relative_path() ? normal : normal.parent_path();
}

std::string shownPath(std::filesystem::path const& path) {
    return Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(path.string()));
}

std::string whyNotKept(Platform::WriteWitness const& files) {
    auto const& failure = files.lastFailure();
    if (!failure) return Texts::changedElsewhere();
    return Texts::unwritableFile(shownPath(failure->path), failure->error.message());
}

std::string alignedColumns(std::vector<std::vector<std::string>> const& rows, std::string_view indent) {
    AlignedColumns columns;
    for (auto const& row : rows)
        columns.measure(row);
    std::string page;
    for (auto const& row : rows)
        page += std::string(indent) + columns.line(row) + "\n";
    return page;
}

std::int64_t wholeNumber(std::string_view option, std::string_view text) {
    std::int64_t number = 0;
    auto const digits = text.starts_with('+') ? text.substr(1) : text;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    bool const isWhole = error == std::errc() && end == digits.data() + digits.size() && !digits.empty();
    if (!isWhole || (digits.size() != text.size() && digits.starts_with('-')))
        throw CommandError::wrongUse(Texts::notANumber(option, text));
    return number;
}

Foundation::Date moment(std::string_view option, std::string_view text,
                        Foundation::Calendar const& calendar) {
    auto const date = Foundation::momentFromISO8601(text, calendar);
    if (!date) throw CommandError::wrongUse(Texts::notAMoment(option, text));
    return *date;
}

std::chrono::local_days civilDay(std::string_view option, std::string_view text) {
    // A day alone is its first instant; in UTC that is the day itself.
    Foundation::Calendar const utc(Foundation::TimeZone::utc());
    auto const date = text.size() == 10 ? Foundation::momentFromISO8601(text, utc) : std::nullopt;
    if (!date) throw CommandError::wrongUse(Texts::notADay(option, text));
    return utc.day(*date);
}

} // namespace Companion
