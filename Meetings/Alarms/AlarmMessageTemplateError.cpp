#include "Meetings/Alarms/AlarmMessageTemplateError.h"

#include <string_view>

namespace Meetings {
namespace {

std::string textOf(AlarmMessageTemplateError::Case errorCase, std::string_view reason) {
    switch (errorCase) {
    case AlarmMessageTemplateError::Case::decodingFailed:
        return "The stored message cannot be read (" + std::string(reason) +
               "), so the usual one is used. Store another in its place.";
    case AlarmMessageTemplateError::Case::encodingFailed:
        return "The message is not valid UTF-8. Nothing was stored; write it anew.";
    case AlarmMessageTemplateError::Case::notStored:
        return "The settings could not be written (" + std::string(reason) + "). The former message stands.";
    }
    return "The message could not be stored.";
}

} // namespace

AlarmMessageTemplateError::AlarmMessageTemplateError(Case errorCase, std::string reason)
    : errorCase(errorCase),
      text(textOf(errorCase, reason)) {}

} // namespace Meetings
