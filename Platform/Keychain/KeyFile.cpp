#include "Platform/Keychain/KeyFile.h"

#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace Platform::KeyFile {
namespace {

using Foundation::SecretBytes;
using Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

// mark, digest of the value, value
constexpr std::string_view mark = "quillora key 1\n";
constexpr std::size_t headSize = mark.size() + std::tuple_size_v<Digest>;
static_assert(headSize + greatestValueSize <= greatestFileSize);

Digest digestOf(std::span<std::byte const> value) {
    Digest digest{};
    SHA256(reinterpret_cast<unsigned char const*>(value.data()), value.size(), digest.data());
    return digest;
}

std::string escaped(std::string_view text) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string made;
    for (char const byte : text) {
        if (plain.contains(byte)) {
            made += byte;
            continue;
        }
        auto const code = static_cast<unsigned char>(byte);
        made += '%';
        made += digits[code / 16];
        made += digits[code % 16];
    }
    return made;
}

} // namespace

std::string nameOf(GenericPasswordIdentity const& identity) {
    return "item " + escaped(identity.service) + " " + escaped(identity.account);
}

SecretBytes contentOf(SecretBytes const& value) {
    return SecretBytes::filledBy(headSize + value.size(), [&](std::span<std::byte> content) {
        auto const digest = digestOf(value.bytes());
        std::ranges::copy(std::as_bytes(std::span(mark)), content.begin());
        std::ranges::copy(std::as_bytes(std::span(digest)), content.begin() + mark.size());
        std::ranges::copy(value.bytes(), content.begin() + headSize);
    });
}

GenericPasswordMatch valueIn(std::span<std::byte const> content) {
    auto const marked = std::as_bytes(std::span(mark));
    auto const isItem =
        content.size() >= mark.size() && std::ranges::equal(content.first(mark.size()), marked);
    // An empty file is an item that lost everything, not one that somebody wrote.
    if (content.empty()) return {.status = KeychainStatus::ioErr, .data = std::nullopt};
    if (!isItem) return {.status = KeychainStatus::success, .data = std::nullopt};
    if (content.size() < headSize) return {.status = KeychainStatus::ioErr, .data = std::nullopt};
    auto const value = content.subspan(headSize);
    auto const digest = digestOf(value);
    if (!std::ranges::equal(content.subspan(mark.size(), digest.size()), std::as_bytes(std::span(digest)))) {
        return {.status = KeychainStatus::ioErr, .data = std::nullopt};
    }
    return {.status = KeychainStatus::success, .data = SecretBytes(value)};
}

} // namespace Platform::KeyFile
