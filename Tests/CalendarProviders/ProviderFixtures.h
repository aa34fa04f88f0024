#pragma once

#include "CalendarProviders/CalendarProviderEntity.h"
#include "CalendarProviders/ResultEntity.h"
#include "Foundation/SecretBytes.h"
#include "Platform/Keychain/Keychain.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// What the tests of the registry have in common.
namespace CalendarProviders::Fixtures {

inline constexpr char const* databaseFile = "/data/Quillora/CalendarProviders.RegistryProvider.realm";

inline Platform::GenericPasswordIdentity const keyIdentity = {.service = "CalendarProviders.RegistryProvider",
                                                              .account = "RealmEncryptionKey"};

inline CalendarProviderEntity provider(std::string id, bool isEnabled = true) {
    return {
        .capId = std::move(id),
        .capProvider = AccountProviderEnum::eventKit,
        .capDisplayName = "Calendars on this computer",
        .capDescription = "Work and home",
        .capEmail = "ana@host",
        .capIsEnabled = isEnabled,
        .capRegisteredAt = {.secondsSince1970 = 1700000000.5},
    };
}

/// Bytes that count up from `first`.
inline Foundation::SecretBytes countingKey(std::size_t length = 64, unsigned char first = 0) {
    std::vector<std::byte> bytes;
    for (std::size_t index = 0; index < length; ++index)
        bytes.push_back(std::byte{static_cast<unsigned char>(first + index)});
    return Foundation::SecretBytes(bytes);
}

/// Which messages a result bears, and what they say.
struct Messages {
    std::optional<std::string> database = std::nullopt;
    std::optional<std::string> domain = std::nullopt;
    std::optional<std::string> infrastructure = std::nullopt;
};

/// Holds a result to be a failure with exactly these messages and nothing else in it.
inline void expectFailure(ResultEntity const& result, Messages const& messages) {
    EXPECT_FALSE(result.result);
    EXPECT_FALSE(result.data.has_value());
    EXPECT_EQ(result.id, 0);
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(result.databaseMessage, messages.database);
    EXPECT_EQ(result.domainMessage, messages.domain);
    EXPECT_EQ(result.infrastructureMessage, messages.infrastructure);
    EXPECT_EQ(result.stackTrace, std::nullopt);
    EXPECT_EQ(result.controllerMessage, std::nullopt);
    EXPECT_EQ(result.applicationMessage, std::nullopt);
}

/// Holds a result to be a success without messages.
inline void expectSuccess(ResultEntity const& result) {
    EXPECT_TRUE(result.result);
    EXPECT_EQ(result.id, 0);
    EXPECT_EQ(result.message, "");
    EXPECT_EQ(result.databaseMessage, std::nullopt);
    EXPECT_EQ(result.domainMessage, std::nullopt);
    EXPECT_EQ(result.infrastructureMessage, std::nullopt);
    EXPECT_EQ(result.stackTrace, std::nullopt);
    EXPECT_EQ(result.controllerMessage, std::nullopt);
    EXPECT_EQ(result.applicationMessage, std::nullopt);
}

/// Holds a result to be a success that yields nothing.
inline void expectPlainSuccess(ResultEntity const& result) {
    expectSuccess(result);
    EXPECT_FALSE(result.data.has_value());
}

/// The ids of a list of providers; absent when the result carries no such list.
inline std::optional<std::vector<std::string>> ids(ResultEntity const& result) {
    auto const providers = result.dataAs<std::vector<CalendarProviderEntity>>();
    if (!providers) return std::nullopt;
    std::vector<std::string> found;
    for (auto const& provider : *providers)
        found.push_back(provider.capId);
    return found;
}

} // namespace CalendarProviders::Fixtures
