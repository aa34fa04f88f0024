#pragma once

#include "Foundation/SecretBytes.h"
#include "Platform/Keychain/Keychain.h"

#include <cstddef>
#include <span>
#include <string>

/// How an item of the file keychain looks: its name, and its content with a digest, so that a file that lost
/// a part is not taken for another key.
namespace Platform::KeyFile {

/// Longer values are refused. Far more than any key has.
inline constexpr std::size_t greatestValueSize = 4096;
/// As long as the longest item file.
inline constexpr std::size_t greatestFileSize = greatestValueSize + 64;

/// A file name that says the identity, whatever characters it has: no two identities share one.
std::string nameOf(GenericPasswordIdentity const& identity);

Foundation::SecretBytes contentOf(Foundation::SecretBytes const& value);

/// The value in a file's content. Bytes that never were an item are a text: `success` without data. An item
/// that is no longer whole is `ioErr`.
GenericPasswordMatch valueIn(std::span<std::byte const> content);

} // namespace Platform::KeyFile
