#include "CalendarProviders/ResultEntity.h"

#include <utility>

namespace CalendarProviders {

ResultEntity succeeded(std::any data) {
    return {
        .result = true,
        .data = std::move(data),
        .databaseMessage = std::nullopt,
        .stackTrace = std::nullopt,
        .controllerMessage = std::nullopt,
        .applicationMessage = std::nullopt,
        .domainMessage = std::nullopt,
        .infrastructureMessage = std::nullopt,
    };
}

ResultEntity failed(ResultFailure failure) {
    return {
        .result = false,
        .data = {},
        .databaseMessage = std::move(failure.databaseMessage),
        .stackTrace = std::nullopt,
        .controllerMessage = std::nullopt,
        .applicationMessage = std::nullopt,
        .domainMessage = std::move(failure.domainMessage),
        .infrastructureMessage = std::move(failure.infrastructureMessage),
    };
}

ResultEntity failedAbove(ResultEntity const& storage, std::string_view otherwise) {
    return failed({.infrastructureMessage = storage.databaseMessage.value_or(std::string(otherwise))});
}

} // namespace CalendarProviders
