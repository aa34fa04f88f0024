#pragma once

#include "Platform/EventStore/ICalendar/CalendarTime.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <rapidcheck.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

/// Random rules and series, in the text that a calendar file gives them.
namespace RandomSeries {

/// A number of the range without its end, whatever the size of the case: a bound that grows with it would
/// leave the first cases all alike.
inline std::int64_t between(std::int64_t from, std::int64_t end) {
    return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(from, end));
}

inline bool isOneIn(int count) {
    return between(0, count) == 0;
}

/// A few different numbers of a range, with commas.
inline std::string numbers(std::int64_t from, std::int64_t to, bool isSigned) {
    std::string list;
    for (auto rest = between(1, 4); rest > 0; --rest) {
        auto const number = between(from, to + 1);
        if (!list.empty()) list += ',';
        list += std::to_string(isSigned && number != 0 && isOneIn(3) ? -number : number);
    }
    return list;
}

inline std::string weekdays(bool mayCount) {
    std::string list;
    for (auto rest = between(1, 4); rest > 0; --rest) {
        if (!list.empty()) list += ',';
        if (mayCount && isOneIn(2)) list += numbers(1, 4, true).substr(0, 1);
        list += *rc::gen::elementOf(std::vector<std::string>{"SU", "MO", "TU", "WE", "TH", "FR", "SA"});
    }
    return list;
}

/// A rule that happens daily or less often, without an end.
inline std::string rule() {
    auto const frequency =
        *rc::gen::elementOf(std::vector<std::string>{"DAILY", "WEEKLY", "WEEKLY", "MONTHLY", "YEARLY"});
    auto text = "FREQ=" + frequency;
    if (isOneIn(2)) text += ";INTERVAL=" + std::to_string(between(2, 5));
    if (isOneIn(4)) text += ";BYMONTH=" + numbers(1, 12, false);
    bool const isMonthly = frequency == "MONTHLY" || frequency == "YEARLY";
    if (frequency != "WEEKLY" && isOneIn(4)) text += ";BYMONTHDAY=" + numbers(1, 31, true);
    if (isOneIn(2)) text += ";BYDAY=" + weekdays(isMonthly);
    if (isOneIn(6)) text += ";BYHOUR=" + numbers(0, 23, false);
    if (isMonthly && isOneIn(6) && text.find(";BY") != std::string::npos)
        text += ";BYSETPOS=" + numbers(1, 3, true);
    if (isOneIn(4)) text += ";WKST=" + weekdays(false).substr(0, 2);
    return text;
}

/// How the times of a series are written.
struct Form {
    Platform::ICalendar::TimeForm form;
    std::string parameters;
};

inline Form form() {
    using Platform::ICalendar::TimeForm;
    static std::vector<Form> const forms{{TimeForm::utc, ""},
                                         {TimeForm::floating, ""},
                                         {TimeForm::date, ";VALUE=DATE"},
                                         {TimeForm::zoned, ";TZID=Europe/Berlin"},
                                         {TimeForm::zoned, ";TZID=America/New_York"}};
    return forms[static_cast<std::size_t>(between(0, std::ssize(forms)))];
}

inline std::string text(Form const& form, std::int64_t local) {
    return form.parameters + ":" +
           Platform::ICalendar::CalendarTime{.form = form.form, .zone = 0, .localSeconds = local}.text() +
           "\r\n";
}

} // namespace RandomSeries
