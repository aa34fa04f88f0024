#pragma once

#include <boost/asio/ssl/context.hpp>

namespace Backend {

/// A TLS context whose key and certificate were made just now; no client has a reason to trust it.
boost::asio::ssl::context contextWithSelfSignedCertificate();

} // namespace Backend
