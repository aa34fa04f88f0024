#pragma once

#include "Meetings/MeetRepository.h"
#include "Meetings/Remote/EventResponseDTO.h"
#include "Networking/APIClient.h"
#include "Platform/Appearance/Appearance.h"

#include <memory>
#include <string_view>
#include <vector>

namespace Meetings {

/// The meets of the backend. Every failure of the client is thrown as RemoteEventRepositoryError; nothing is
/// cached.
class RemoteEventRepositoryImpl final : public MeetRepository {
public:
    static constexpr std::string_view path = "/v0/events";
    static constexpr std::string_view errorNotFound = "evento no encontrado"; ///< For a 404.

    RemoteEventRepositoryImpl(Networking::APIClient client,
                              std::shared_ptr<Platform::Appearance const> appearance);

    /// The events as the backend returns them, with what a meet has no field for. Throws as all else here.
    Foundation::Task<std::vector<EventResponseDTO>> fetchEvents() const;

    Foundation::Task<std::vector<MeetEntity>> fetchAllMeets() override;
    Foundation::Task<MeetEntity> create(MeetEntity meet) override;
    Foundation::Task<MeetEntity> update(MeetEntity meet) override;
    Foundation::Task<void> deleteMeet(MeetEntity meet) override;

private:
    Networking::APIClient client;
    std::shared_ptr<Platform::Appearance const> appearance;
};

} // namespace Meetings
