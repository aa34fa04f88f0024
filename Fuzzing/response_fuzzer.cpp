// Any bytes are a response of the backend: decoding them ends with events or a failure, and what was decoded
// survives being written and read again.

#include "Foundation/DateFormatting.h"
#include "Foundation/JSON.h"
#include "Meetings/Remote/EventResponseDTO.h"
#include "Platform/Appearance/FixedAppearance.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

namespace JSON = Foundation::JSON;

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

void checkEvent(JSON::Value const& value) {
    auto const event = Meetings::EventResponseDTO::decode(value);
    if (!event) return;
    // Further minutes are a fatal error, on purpose.
    constexpr std::int64_t most = INT64_MAX / 60;
    if (event->evtDurationMinutes > most || event->evtDurationMinutes < -most) return;
    auto const meet = event->toMeetEntity(Platform::FixedAppearance());
    require(meet.metOriginalIdentifier == event->evtId, "a meet bears its event's identifier");
    require(Foundation::dateFromISO8601(Foundation::iso8601(meet.metDate)) == meet.metDate,
            "a date that was read is written so that it reads the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size > 65536) return 0;
    auto const document = JSON::parse(std::string_view(reinterpret_cast<char const*>(data), size));
    if (!document) return 0;
    auto const written = JSON::serialize(*document);
    require(written.has_value(), "what was read can be written");
    require(JSON::parse(*written) == *document, "what was written reads the same");
    checkEvent(*document);
    if (auto const* list = std::get_if<JSON::Array>(&document->storage)) {
        for (auto const& element : *list)
            checkEvent(element);
    }
    return 0;
}
