#include "Samples/backend/SelfSignedCertificate.h"

// The compiled half of the library's TLS part, built once here.
#include <boost/asio/ssl/impl/src.hpp>

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>
#include <stdexcept>

namespace Backend {
namespace {

struct Deleter {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
};

} // namespace

boost::asio::ssl::context contextWithSelfSignedCertificate() {
    std::unique_ptr<EVP_PKEY, Deleter> const key(EVP_EC_gen("P-256"));
    std::unique_ptr<X509, Deleter> const certificate(X509_new());
    if (!key || !certificate) throw std::runtime_error("no key for the certificate");

    constexpr long day = 86400;
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), day);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* const name = X509_get_subject_name(certificate.get());
    auto const* const host = reinterpret_cast<unsigned char const*>("127.0.0.1");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, host, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    bool const isSigned = X509_sign(certificate.get(), key.get(), EVP_sha256()) != 0;

    boost::asio::ssl::context context(boost::asio::ssl::context::tls_server);
    bool const isUsed = isSigned &&
                        SSL_CTX_use_certificate(context.native_handle(), certificate.get()) == 1 &&
                        SSL_CTX_use_PrivateKey(context.native_handle(), key.get()) == 1;
    if (!isUsed) throw std::runtime_error("the certificate cannot be used");
    return context;
}

} // namespace Backend
