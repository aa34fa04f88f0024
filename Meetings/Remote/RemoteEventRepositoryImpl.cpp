#include "Meetings/Remote/RemoteEventRepositoryImpl.h"

#include "Meetings/Remote/CreateEventRequestDTO.h"
#include "Meetings/Remote/RemoteEventRepositoryError.h"
#include "Meetings/Remote/UpdateEventRequestDTO.h"
#include "Networking/APIErrorMessageEnum.h"

namespace Meetings {
namespace {

std::string itemPath(MeetEntity const& meet) {
    return std::string(RemoteEventRepositoryImpl::path) + "/" + meet.metOriginalIdentifier;
}

// The border where the client's errors become this package's.
[[noreturn]] void raise(Networking::APIError const& error) {
    throw RemoteEventRepositoryError::endpointFailed(Networking::APIErrorMessageEnum::describe(
        error, std::string(RemoteEventRepositoryImpl::errorNotFound)));
}

} // namespace

RemoteEventRepositoryImpl::RemoteEventRepositoryImpl(Networking::APIClient client,
                                                     std::shared_ptr<Platform::Appearance const> appearance)
    : client(std::move(client)),
      appearance(std::move(appearance)) {}

Foundation::Task<std::vector<EventResponseDTO>> RemoteEventRepositoryImpl::fetchEvents() const {
    std::vector<Foundation::URLQueryItem> noQuery;
    auto events = co_await client.getList<EventResponseDTO>(std::string(path), std::move(noQuery));
    if (!events) raise(events.error());
    co_return *std::move(events);
}

Foundation::Task<std::vector<MeetEntity>> RemoteEventRepositoryImpl::fetchAllMeets() {
    std::vector<EventResponseDTO> events = co_await fetchEvents();
    std::vector<MeetEntity> meets;
    meets.reserve(events.size());
    for (auto& event : events) {
        meets.push_back(event.toMeetEntity(*appearance));
        // A list may be large, and its texts need not be held twice.
        event = EventResponseDTO{};
    }
    co_return meets;
}

Foundation::Task<MeetEntity> RemoteEventRepositoryImpl::create(MeetEntity meet) {
    CreateEventRequestDTO body(meet);
    auto const event = co_await client.post<EventResponseDTO>(std::string(path), std::move(body));
    if (!event) raise(event.error());
    co_return event->toMeetEntity(*appearance);
}

Foundation::Task<MeetEntity> RemoteEventRepositoryImpl::update(MeetEntity meet) {
    UpdateEventRequestDTO body(meet);
    auto const event = co_await client.put<EventResponseDTO>(itemPath(meet), std::move(body));
    if (!event) raise(event.error());
    co_return event->toMeetEntity(*appearance);
}

Foundation::Task<void> RemoteEventRepositoryImpl::deleteMeet(MeetEntity meet) {
    auto const result = co_await client.remove(itemPath(meet));
    if (!result) raise(result.error());
}

} // namespace Meetings
