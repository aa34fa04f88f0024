#pragma once

#include "Samples/backend/EventArchive.h"

#include <functional>
#include <string>

namespace Backend {

/// A request as the service looks at it.
struct EndpointRequest {
    std::string method;
    std::string target;        ///< Path and query as they came.
    std::string authorization; ///< The header's value; empty when there is none.
    std::string body;
};

struct EndpointResponse {
    unsigned status;
    std::string body;
    std::string contentType = "text/plain; charset=utf-8";
};

enum class Access { readWrite, readOnly };

/// The collection "/v0/events": who may do what to which event, without a socket.
class EventEndpoint {
public:
    EventEndpoint(EventArchive archive, std::string token, Access access,
                  std::function<std::string()> makeIdentifier);

    EndpointResponse answer(EndpointRequest const& request);

private:
    EndpointResponse answerCollection(EndpointRequest const& request);
    EndpointResponse answerItem(EndpointRequest const& request, std::string const& identifier);
    EndpointResponse store(EndpointRequest const& request, std::string const& identifier, unsigned status);
    [[nodiscard]] EndpointResponse list() const;

    EventArchive archive;
    std::string token;
    Access access;
    std::function<std::string()> makeIdentifier;
};

} // namespace Backend
