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
#include <expected>
#include <limits>
#include <string_view>
#include <utility>

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

// One by one they are the same as all at once.
void checkElements(std::string_view bytes, std::expected<JSON::Value, JSON::DecodeFailure> const& document) {
    JSON::Array elements;
    auto const read =
        JSON::parseElements(bytes, std::numeric_limits<std::size_t>::max(),
                            [&](JSON::Value element) { elements.push_back(std::move(element)); });
    auto const* list = document ? std::get_if<JSON::Array>(&document->storage) : nullptr;
    require(read.has_value() == (list != nullptr), "a list is one in either way of reading");
    if (list != nullptr) require(elements == *list, "a list has the same elements in either way of reading");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size > 65536) return 0;
    std::string_view const bytes(reinterpret_cast<char const*>(data), size);
    auto const document = JSON::parse(bytes);
    checkElements(bytes, document);
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
