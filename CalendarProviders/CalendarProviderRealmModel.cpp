#include "CalendarProviders/CalendarProviderRealmModel.h"

namespace CalendarProviders {
namespace {

template <typename Value>
void fill(Value& field, Platform::PersistedObject const& object, std::string_view name) {
    if (auto const* value = object.property<Value>(name)) field = *value;
}

} // namespace

CalendarProviderRealmModel
CalendarProviderRealmModel::fromPersisted(Platform::PersistedObject const& object) {
    CalendarProviderRealmModel model;
    model.capId = object.primaryKey;
    fill(model.capProvider, object, "capProvider");
    fill(model.capDisplayName, object, "capDisplayName");
    fill(model.capDescription, object, "capDescription");
    fill(model.capEmail, object, "capEmail");
    fill(model.capIsEnabled, object, "capIsEnabled");
    fill(model.capRegisteredAt, object, "capRegisteredAt");
    return model;
}

Platform::PersistedObject CalendarProviderRealmModel::toPersisted() const {
    return {
        .typeName = std::string(typeName),
        .primaryKey = capId,
        .properties =
            {
                {.name = "capProvider", .value = capProvider},
                {.name = "capDisplayName", .value = capDisplayName},
                {.name = "capDescription", .value = capDescription},
                {.name = "capEmail", .value = capEmail},
                {.name = "capIsEnabled", .value = capIsEnabled},
                {.name = "capRegisteredAt", .value = capRegisteredAt},
            },
    };
}

} // namespace CalendarProviders
