#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace CalendarProviders {

/// The kinds of calendar account.
enum class AccountProviderEnum : std::uint8_t { eventKit };

/// Every kind, in declaration order.
inline constexpr std::array allAccountProviders = {AccountProviderEnum::eventKit};

/// English in every language.
std::string_view displayName(AccountProviderEnum provider);

/// Name of a system-provided image.
std::string_view iconSystemName(AccountProviderEnum provider);

/// Whether more than one account of the kind may be registered.
bool allowsMultipleAccounts(AccountProviderEnum provider);

} // namespace CalendarProviders

template <>
inline constexpr auto Foundation::rawValues<CalendarProviders::AccountProviderEnum> =
    std::to_array<std::pair<CalendarProviders::AccountProviderEnum, std::string_view>>({
        {CalendarProviders::AccountProviderEnum::eventKit, "eventKit"},
    });
