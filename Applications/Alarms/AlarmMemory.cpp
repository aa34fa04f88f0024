#include "Applications/Alarms/AlarmMemory.h"

#include "Foundation/Numbers.h"
#include "Meetings/Alarms/ArmedAlarmsStore.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace Alarms {

namespace {

using StringArray = Platform::UserDefaults::StringArray;

constexpr std::string_view rungKey = "rungAlarmIdentifiers";
constexpr std::string_view snoozedKey = "snoozedAlarms";

// Absent for what no program of ours wrote.
std::optional<std::pair<std::string, Foundation::Date>> snoozeOf(std::string_view text) {
    auto const at = text.rfind('@');
    if (at == std::string_view::npos) return std::nullopt;
    double seconds = 0;
    auto const* const end = text.data() + text.size();
    auto const [stop, failure] = std::from_chars(text.data() + at + 1, end, seconds);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return std::pair(std::string(text.substr(0, at)), Foundation::Date{.secondsSince1970 = seconds});
}

} // namespace

AlarmMemory::AlarmMemory(std::shared_ptr<Platform::UserDefaults> defaults) : defaults(std::move(defaults)) {}

std::set<std::string> AlarmMemory::armed() const {
    return Meetings::ArmedAlarmsStore::load(*defaults);
}

std::set<std::string> AlarmMemory::rung() const {
    auto const stored = defaults->stringArray(rungKey).value_or(StringArray{});
    return {stored.begin(), stored.end()};
}

std::map<std::string, Foundation::Date> AlarmMemory::snoozed() const {
    std::map<std::string, Foundation::Date> until;
    for (auto const& text : defaults->stringArray(snoozedKey).value_or(StringArray{}))
        if (auto snooze = snoozeOf(text)) until.insert(*std::move(snooze));
    return until;
}

std::error_code AlarmMemory::setArmed(std::set<std::string> const& identifiers) const {
    if (armed() == identifiers) return {};
    return Meetings::ArmedAlarmsStore::save(identifiers, *defaults);
}

std::error_code AlarmMemory::setRung(std::set<std::string> const& identifiers) const {
    if (rung() == identifiers) return {};
    return defaults->setStringArray(rungKey, {identifiers.begin(), identifiers.end()});
}

std::error_code AlarmMemory::setSnoozed(std::map<std::string, Foundation::Date> const& until) const {
    if (snoozed() == until) return {};
    StringArray texts;
    for (auto const& [identifier, moment] : until)
        texts.push_back(identifier + "@" + Foundation::shortestDecimal(moment.secondsSince1970));
    return defaults->setStringArray(snoozedKey, texts);
}

} // namespace Alarms
