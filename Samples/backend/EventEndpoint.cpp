#include "Samples/backend/EventEndpoint.h"

#include "Foundation/DateFormatting.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace Backend {
namespace {

namespace JSON = Foundation::JSON;

constexpr std::string_view collection = "/v0/events";

EndpointResponse text(unsigned status, std::string body) {
    return {.status = status, .body = std::move(body)};
}

EndpointResponse json(unsigned status, JSON::Value const& value) {
    auto body = JSON::serialize(value);
    if (!body) return text(500, "no se pudo codificar la respuesta");
    return {.status = status, .body = std::move(*body), .contentType = "application/json"};
}

std::optional<std::string> unescaped(std::string_view path) {
    std::string result;
    for (std::size_t index = 0; index < path.size(); ++index) {
        if (path[index] != '%') {
            result += path[index];
            continue;
        }
        unsigned byte = 0;
        auto const digits = path.substr(index + 1, 2);
        auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() != 2 || read.ptr != digits.data() + 2) return std::nullopt;
        result += static_cast<char>(byte);
        index += 2;
    }
    return result;
}

bool isText(JSON::Value const& value) {
    return JSON::text(value).has_value();
}
bool isDate(JSON::Value const& value) {
    auto const read = JSON::text(value);
    return read && Foundation::dateFromISO8601(*read);
}
bool isInteger(JSON::Value const& value) {
    return JSON::integer(value).has_value();
}
bool isBoolean(JSON::Value const& value) {
    return JSON::boolean(value).has_value();
}

struct Field {
    std::string_view name;
    bool (*isValid)(JSON::Value const&);
    bool isReturned;
};
constexpr std::array<Field, 7> fields = {{
    {"evtTitle", &isText, true},
    {"evtSchedule", &isDate, true},
    {"evtDurationMinutes", &isInteger, true},
    {"evtHasAlarm", &isBoolean, false},
    {"evtDescription", &isText, true},
    {"evtRepeat", &isText, true},
    {"evtCustomRepeat", &isText, true},
}};

// The record to store, or what is wrong with the request.
std::expected<JSON::Object, std::string> record(std::string const& body, std::string const& identifier) {
    auto const document = JSON::parse(body);
    if (!document) return std::unexpected("el cuerpo no es JSON");
    JSON::Object result{{"evtId", identifier}};
    for (auto const& field : fields) {
        auto const member = JSON::required(*document, field.name);
        if (!member) return std::unexpected("falta " + std::string(field.name));
        if (!field.isValid(**member)) return std::unexpected("valor inválido en " + std::string(field.name));
        if (field.isReturned) result.emplace_back(std::string(field.name), **member);
    }
    return result;
}

} // namespace

EventEndpoint::EventEndpoint(EventArchive archive, std::string token, Access access,
                             std::function<std::string()> makeIdentifier)
    : archive(std::move(archive)),
      token(std::move(token)),
      access(access),
      makeIdentifier(std::move(makeIdentifier)) {}

EndpointResponse EventEndpoint::answer(EndpointRequest const& request) {
    if (request.authorization != "Bearer " + token) return text(401, "token inválido");
    bool const isWrite = request.method != "GET" && request.method != "HEAD";
    if (isWrite && access == Access::readOnly) return text(403, "solo lectura");

    auto const path = std::string_view(request.target).substr(0, request.target.find('?'));
    if (path == collection) return answerCollection(request);
    bool const isItem = path.starts_with(collection) && path.substr(collection.size()).starts_with('/');
    if (!isItem) return text(404, "no existe");
    auto const identifier = unescaped(path.substr(collection.size() + 1));
    if (!identifier) return text(400, "ruta inválida");
    return answerItem(request, *identifier);
}

EndpointResponse EventEndpoint::answerCollection(EndpointRequest const& request) {
    if (request.method == "GET") return list();
    if (request.method == "POST") return store(request, makeIdentifier(), 201);
    return text(405, "método no permitido");
}

EndpointResponse EventEndpoint::answerItem(EndpointRequest const& request, std::string const& identifier) {
    auto const* const event = archive.find(identifier);
    if (event == nullptr) return text(404, "evento no encontrado");
    if (request.method == "GET" || request.method == "PATCH") return json(200, event->record);
    if (request.method == "PUT") return store(request, identifier, 200);
    if (request.method != "DELETE") return text(405, "método no permitido");
    if (!archive.remove(identifier)) return text(500, "no se pudo guardar");
    return text(204, "");
}

EndpointResponse EventEndpoint::store(EndpointRequest const& request, std::string const& identifier,
                                      unsigned status) {
    auto stored = record(request.body, identifier);
    if (!stored) return text(400, stored.error());
    if (!archive.put({.identifier = identifier, .record = *stored})) return text(500, "no se pudo guardar");
    return json(status, *stored);
}

EndpointResponse EventEndpoint::list() const {
    JSON::Array events;
    for (auto const& event : archive.events())
        events.emplace_back(event.record);
    return json(200, events);
}

} // namespace Backend
