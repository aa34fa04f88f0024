#pragma once

#include "Foundation/UUID.h"

#include <any>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace CalendarProviders {

/// What every operation of this package yields instead of throwing. Each layer writes its own message and
/// leaves the others absent; `succeeded` and `failed` keep it to that.
struct ResultEntity {
    std::string guidId = Foundation::UUID::random().uuidString();
    std::int64_t id = 0; ///< Always 0 in this package.
    bool result;
    std::any data; ///< What was asked for; empty on failure and where nothing is yielded.
    std::string message = {};
    std::optional<std::string> databaseMessage;
    std::optional<std::string> stackTrace;
    std::optional<std::string> controllerMessage;
    std::optional<std::string> applicationMessage;
    std::optional<std::string> domainMessage;
    std::optional<std::string> infrastructureMessage;

    /// The data as a `Value`; absent when there is none or it is of another type.
    template <typename Value>
    [[nodiscard]] std::optional<Value> dataAs() const {
        auto const* value = std::any_cast<Value>(&data);
        if (value == nullptr) return std::nullopt;
        return *value;
    }
};

/// The message of the one layer that failed, or that lifts the message of the layer below it.
struct ResultFailure {
    std::optional<std::string> databaseMessage = std::nullopt;
    std::optional<std::string> domainMessage = std::nullopt;
    std::optional<std::string> infrastructureMessage = std::nullopt;
};

/// A success that yields `data`, or nothing.
ResultEntity succeeded(std::any data = {});

/// A failure without data.
ResultEntity failed(ResultFailure failure);

/// A failure of the infrastructure, which says what the storage below it said, or `otherwise` where that said
/// nothing.
ResultEntity failedAbove(ResultEntity const& storage, std::string_view otherwise);

} // namespace CalendarProviders
