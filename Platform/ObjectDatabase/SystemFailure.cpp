#include "Platform/ObjectDatabase/SystemFailure.h"

#include <cerrno>
#include <cstring>

namespace Platform::SystemFailure {

bool mayPass(std::error_code error) {
    if (isShortage(error)) return true;
    switch (error.value()) {
    case EIO:
    case ESTALE:
    case ETIMEDOUT:
    case ENOTCONN:
    case EHOSTDOWN:
    case ENETDOWN: return true;
    default: return false;
    }
}

bool isShortage(std::error_code error) {
    switch (error.value()) {
    case EINTR:
    case EAGAIN:
    case EBUSY:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ENOBUFS:
    case ENOLCK:
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return true;
    default: return false;
    }
}

bool isRefusal(std::error_code error) {
    return error.value() == EACCES || error.value() == EPERM || error.value() == EROFS;
}

char const* text(std::error_code error) {
    auto const* description = ::strerrordesc_np(error.value());
    return description != nullptr ? description : "unknown reason";
}

} // namespace Platform::SystemFailure
