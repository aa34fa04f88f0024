#include "Networking/APIErrorMessageEnum.h"

namespace Networking::APIErrorMessageEnum {

std::string describe(APIError const& error, std::string const& notFoundMessage) {
    switch (error.errorCase()) {
    case APIError::Case::forbidden:
    case APIError::Case::badRequest:
    case APIError::Case::transport:
    case APIError::Case::decoding: return error.message();
    case APIError::Case::server: return "error del servidor (" + std::to_string(error.statusCode()) + ")";
    case APIError::Case::unauthorized: return "no autorizado";
    case APIError::Case::notFound: return notFoundMessage;
    }
    return {};
}

} // namespace Networking::APIErrorMessageEnum
