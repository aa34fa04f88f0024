#pragma once

#include "Foundation/SecretBytes.h"
#include "Platform/ObjectDatabase/ObjectDatabaseError.h"

#include <array>
#include <cstddef>
#include <expected>
#include <span>
#include <vector>

/// The sealed form of a database: what a file holds. Pure functions over bytes.
///
/// A head of 64 bytes (16 of mark, 4 of version, little end first, 32 of salt, 12 of nonce), the image
/// encrypted with AES-256-GCM, and the tag of 16 bytes, which vouches for the head too. The cipher's key is
/// drawn from all bytes of the database's key and the salt (HKDF with SHA-256).
namespace Platform::Seal {

inline constexpr std::size_t keySize = 64;
inline constexpr std::size_t headSize = 64;
inline constexpr std::size_t tagSize = 16;

/// What must be new and unpredictable each time.
struct Freshness {
    std::array<std::byte, 32> salt;
    std::array<std::byte, 12> nonce;
};

/// From the system's generator. Throws std::runtime_error when that fails.
Freshness freshness();

/// The image, sealed. The key has `keySize` bytes. Throws std::runtime_error when the cipher is not to be
/// had.
std::vector<std::byte> seal(std::span<std::byte const> image, Foundation::SecretBytes const& key,
                            Freshness const& freshness);

/// The image that was sealed with this key, or why there is none: `foreignFile`, or `wrongKeyOrDamaged`.
/// Throws std::runtime_error when the cipher is not to be had.
std::expected<std::vector<std::byte>, ObjectDatabaseError::Kind> open(std::span<std::byte const> file,
                                                                      Foundation::SecretBytes const& key);

} // namespace Platform::Seal
