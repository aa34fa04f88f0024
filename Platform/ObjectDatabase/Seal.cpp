#include "Platform/ObjectDatabase/Seal.h"

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>
#include <openssl/rand.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace Platform::Seal {
namespace {

using Foundation::SecretBytes;
using Kind = ObjectDatabaseError::Kind;

constexpr std::string_view mark = "quillora sealed\n";
constexpr std::array<std::byte, 4> version{std::byte{1}, std::byte{0}, std::byte{0}, std::byte{0}};
constexpr std::string_view purpose = "Quillora sealed database 1";

constexpr std::size_t versionStart = mark.size();
constexpr std::size_t saltStart = versionStart + version.size();
constexpr std::size_t nonceStart = saltStart + sizeof(Freshness::salt);
static_assert(nonceStart + sizeof(Freshness::nonce) == headSize);

struct Release {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
    void operator()(EVP_CIPHER* algorithm) const { EVP_CIPHER_free(algorithm); }
    void operator()(EVP_KDF* function) const { EVP_KDF_free(function); }
    void operator()(EVP_KDF_CTX* context) const { EVP_KDF_CTX_free(context); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

void require(bool holds) {
    if (!holds) throw std::runtime_error("the system's cipher library refused to work");
}

unsigned char const* raw(std::span<std::byte const> bytes) {
    return reinterpret_cast<unsigned char const*>(bytes.data());
}

unsigned char* raw(std::span<std::byte> bytes) {
    return reinterpret_cast<unsigned char*>(bytes.data());
}

// Looked up once: finding an algorithm costs the library more than using it on a small file.
EVP_KDF* derivation() {
    static Owned<EVP_KDF> const found(EVP_KDF_fetch(nullptr, OSSL_KDF_NAME_HKDF, nullptr));
    require(found != nullptr);
    return found.get();
}

EVP_CIPHER const* cipher() {
    static Owned<EVP_CIPHER> const found(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
    require(found != nullptr);
    return found.get();
}

/// The cipher's own key, wiped when it goes.
class CipherKey {
public:
    CipherKey(SecretBytes const& key, std::span<std::byte const> salt) {
        Owned<EVP_KDF_CTX> const context(EVP_KDF_CTX_new(derivation()));
        require(context != nullptr);
        // The library's parameters are not const, though it only reads them.
        auto const octets = [](char const* name, void const* start, std::size_t size) {
            return OSSL_PARAM_construct_octet_string(name, const_cast<void*>(start), size);
        };
        std::string digest = "SHA256";
        std::array<OSSL_PARAM, 5> const parameters{
            OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest.data(), 0),
            octets(OSSL_KDF_PARAM_KEY, key.bytes().data(), key.size()),
            octets(OSSL_KDF_PARAM_SALT, salt.data(), salt.size()),
            octets(OSSL_KDF_PARAM_INFO, purpose.data(), purpose.size()),
            OSSL_PARAM_construct_end(),
        };
        require(EVP_KDF_derive(context.get(), bytes.data(), bytes.size(), parameters.data()) == 1);
    }
    ~CipherKey() { OPENSSL_cleanse(bytes.data(), bytes.size()); }
    CipherKey(CipherKey const&) = delete;
    CipherKey& operator=(CipherKey const&) = delete;

    [[nodiscard]] unsigned char const* data() const { return bytes.data(); }

private:
    std::array<unsigned char, 32> bytes{};
};

int lengthOf(std::span<std::byte const> bytes) {
    // The cipher counts in int; a registry is a few kilobytes.
    require(bytes.size() <= 0x7FFF0000);
    return static_cast<int>(bytes.size());
}

} // namespace

Freshness freshness() {
    Freshness made{};
    require(RAND_bytes(raw(std::span<std::byte>(made.salt)), static_cast<int>(made.salt.size())) == 1);
    require(RAND_bytes(raw(std::span<std::byte>(made.nonce)), static_cast<int>(made.nonce.size())) == 1);
    return made;
}

std::vector<std::byte> seal(std::span<std::byte const> image, SecretBytes const& key,
                            Freshness const& freshness) {
    std::vector<std::byte> file(headSize + image.size() + tagSize);
    auto const whole = std::span(file);
    std::ranges::copy(std::as_bytes(std::span(mark)), file.begin());
    std::ranges::copy(version, file.begin() + versionStart);
    std::ranges::copy(freshness.salt, file.begin() + saltStart);
    std::ranges::copy(freshness.nonce, file.begin() + nonceStart);

    CipherKey const cipherKey(key, freshness.salt);
    Owned<EVP_CIPHER_CTX> const context(EVP_CIPHER_CTX_new());
    require(context != nullptr);
    int length = 0;
    require(EVP_EncryptInit_ex2(context.get(), cipher(), cipherKey.data(),
                                raw(std::span<std::byte const>(freshness.nonce)), nullptr) == 1);
    require(EVP_EncryptUpdate(context.get(), nullptr, &length, raw(whole.first(headSize)), headSize) == 1);
    require(EVP_EncryptUpdate(context.get(), raw(whole.subspan(headSize)), &length, raw(image),
                              lengthOf(image)) == 1);
    auto const tag = whole.last(tagSize);
    require(EVP_EncryptFinal_ex(context.get(), raw(tag), &length) == 1);
    require(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, tagSize, raw(tag)) == 1);
    return file;
}

std::expected<std::vector<std::byte>, Kind> open(std::span<std::byte const> file, SecretBytes const& key) {
    auto const marked = std::as_bytes(std::span(mark));
    auto const present = file.first(std::min(file.size(), marked.size()));
    if (!std::ranges::equal(present, marked.first(present.size()))) return std::unexpected(Kind::foreignFile);
    if (file.size() < headSize + tagSize) return std::unexpected(Kind::wrongKeyOrDamaged);
    auto const head = file.first(headSize);
    if (!std::ranges::equal(head.subspan(versionStart, version.size()), version)) {
        return std::unexpected(Kind::foreignFile);
    }

    auto const hidden = file.subspan(headSize, file.size() - headSize - tagSize);
    auto const salt = head.subspan(saltStart, sizeof(Freshness::salt));
    auto const nonce = head.subspan(nonceStart, sizeof(Freshness::nonce));
    std::vector<std::byte> tag(file.end() - tagSize, file.end());

    CipherKey const cipherKey(key, salt);
    Owned<EVP_CIPHER_CTX> const context(EVP_CIPHER_CTX_new());
    require(context != nullptr);
    std::vector<std::byte> image(hidden.size());
    int length = 0;
    require(EVP_DecryptInit_ex2(context.get(), cipher(), cipherKey.data(), raw(nonce), nullptr) == 1);
    require(EVP_DecryptUpdate(context.get(), nullptr, &length, raw(head), headSize) == 1);
    require(EVP_DecryptUpdate(context.get(), raw(std::span(image)), &length, raw(hidden), lengthOf(hidden)) ==
            1);
    require(EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, tagSize, raw(std::span(tag))) == 1);
    std::array<unsigned char, tagSize> rest{};
    if (EVP_DecryptFinal_ex(context.get(), rest.data(), &length) != 1) {
        return std::unexpected(Kind::wrongKeyOrDamaged);
    }
    return image;
}

} // namespace Platform::Seal
