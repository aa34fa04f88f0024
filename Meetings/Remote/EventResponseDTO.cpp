#include "Meetings/Remote/EventResponseDTO.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Numbers.h"
#include "Meetings/MeetConfigEnum.h"
#include "Meetings/MeetSystemDesignEnum.h"
#include "Meetings/Remote/MeetRecurrenceRemoteMapper.h"
#include "Meetings/StableIdentifier.h"

#include <optional>

namespace Meetings {
namespace {

namespace JSON = Foundation::JSON;
using JSON::DecodeFailure;

std::expected<Foundation::Date, DecodeFailure> date(JSON::Value const& value) {
    auto const text = JSON::text(value);
    if (!text) return std::unexpected(text.error());
    auto const read = Foundation::dateFromISO8601(*text);
    if (!read) return std::unexpected(DecodeFailure::dataCorrupted);
    return *read;
}

// Reads the required members of one object one after another and keeps the first failure.
class MemberReader {
public:
    explicit MemberReader(JSON::Value const& object) : object(object) {}

    template <typename T>
    T read(std::string_view name, std::expected<T, DecodeFailure> (*convert)(JSON::Value const&),
           T otherwise) {
        if (failure) return otherwise;
        auto const member = JSON::required(object, name);
        if (!member) {
            failure = member.error();
            return otherwise;
        }
        auto converted = convert(**member);
        if (!converted) {
            failure = converted.error();
            return otherwise;
        }
        return std::move(*converted);
    }

    std::string text(std::string_view name) { return read<std::string>(name, &JSON::text, {}); }

    std::optional<DecodeFailure> failure;

private:
    JSON::Value const& object;
};

} // namespace

std::expected<EventResponseDTO, DecodeFailure> EventResponseDTO::decode(JSON::Value const& value) {
    MemberReader reader(value);
    EventResponseDTO event{
        .evtId = reader.text("evtId"),
        .evtTitle = reader.text("evtTitle"),
        .evtSchedule = reader.read<Foundation::Date>("evtSchedule", &date, {.secondsSince1970 = 0}),
        .evtDurationMinutes = reader.read<std::int64_t>("evtDurationMinutes", &JSON::integer, 0),
        .evtDescription = reader.text("evtDescription"),
        .evtRepeat = reader.text("evtRepeat"),
        .evtCustomRepeat = reader.text("evtCustomRepeat"),
    };
    if (reader.failure) return std::unexpected(*reader.failure);
    return event;
}

MeetEntity EventResponseDTO::toMeetEntity(Platform::Appearance const& appearance) const {
    // Any 64-bit number is a length that the record may bear, and one whose seconds do not fit ends the
    // process, on purpose: it would otherwise become another length unnoticed.
    auto const seconds = Foundation::checkedMultiply(evtDurationMinutes, 60);
    return {
        .metId = StableIdentifier::uuid(evtId),
        .metName = evtTitle,
        .metDate = evtSchedule,
        .metDescription = evtDescription,
        .metDuration = static_cast<double>(seconds),
        .metColor = {.hexValue = std::string(MeetSystemDesignEnum::defaultColorHex(appearance))},
        .metIsAllDay = false,
        .metLocation = std::nullopt,
        .metUrl = std::nullopt,
        .metCalendarName = std::string(MeetConfigEnum::nativeCalendarName),
        .metCalendarIdentifier = std::string(MeetConfigEnum::nativeCalendarIdentifier),
        .metRecurrenceFrequency = MeetRecurrenceRemoteMapper::toLocalFrequency(evtRepeat),
        .metRecurringWeekdays = MeetRecurrenceRemoteMapper::toLocalWeekdays(evtCustomRepeat),
        .metOriginalIdentifier = evtId,
        .metSource = MeetSource::backend,
    };
}

} // namespace Meetings
