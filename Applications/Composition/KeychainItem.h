#pragma once

#include "Platform/Keychain/Keychain.h"

namespace Composition {

/// Copies an item, so that both keychains hold the same. `success` also when they did; `itemNotFound` when
/// `from` has none. On any other status nothing has been lost in either.
Platform::KeychainStatus copyItem(Platform::Keychain const& from, Platform::Keychain& to,
                                  Platform::GenericPasswordIdentity const& identity);

} // namespace Composition
