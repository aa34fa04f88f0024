#include "Applications/Composition/KeychainItem.h"

namespace Composition {

using Platform::KeychainStatus;

KeychainStatus copyItem(Platform::Keychain const& from, Platform::Keychain& to,
                        Platform::GenericPasswordIdentity const& identity) {
    auto const original = from.copyMatching(identity);
    if (original.status != KeychainStatus::success) return original.status;
    if (!original.data) return KeychainStatus::ioErr; // A text: no bytes to copy.

    auto const present = to.copyMatching(identity);
    if (present.status != KeychainStatus::success && present.status != KeychainStatus::itemNotFound)
        return present.status;
    if (present.data == original.data) return KeychainStatus::success;
    return present.status == KeychainStatus::success ? to.update(identity, *original.data)
                                                     : to.add(identity, *original.data);
}

} // namespace Composition
