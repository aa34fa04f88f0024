#pragma once

#include "Foundation/Date.h"
#include "Platform/Defaults/UserDefaults.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <system_error>

namespace Alarms {

/// What outlives the program: which alarms are armed (ArmedAlarmsStore), which have rung
/// ("rungAlarmIdentifiers"), and until when one sleeps ("snoozedAlarms": identifier, "@", seconds since
/// 1970). An alarm that has rung is marked before it is heard, so that no crash makes it ring again.
class AlarmMemory final {
public:
    explicit AlarmMemory(std::shared_ptr<Platform::UserDefaults> defaults);

    [[nodiscard]] std::set<std::string> armed() const;
    [[nodiscard]] std::set<std::string> rung() const;
    [[nodiscard]] std::map<std::string, Foundation::Date> snoozed() const;

    /// Each puts its whole content in the place of the former one; what is the same is not written again.
    [[nodiscard]] std::error_code setArmed(std::set<std::string> const& identifiers) const;
    [[nodiscard]] std::error_code setRung(std::set<std::string> const& identifiers) const;
    [[nodiscard]] std::error_code setSnoozed(std::map<std::string, Foundation::Date> const& until) const;

private:
    std::shared_ptr<Platform::UserDefaults> defaults;
};

} // namespace Alarms
