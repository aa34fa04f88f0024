#include "Networking/NetworkLogger.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Networking/TokenRedaction.h"

namespace Networking {
namespace {

std::optional<std::filesystem::path> makeLogFileURL(Platform::FileManager const& files) {
    auto file = NetworkLogger::logFile(files);
    if (file) files.createDirectory(file->parent_path());
    return file;
}

// The token that the request bears; empty before it has one.
std::string tokenOf(Platform::URLRequest const& request) {
    constexpr std::string_view scheme = "Bearer ";
    auto value = request.value("Authorization").value_or("");
    if (!value.starts_with(scheme)) return {};
    value.erase(0, scheme.size());
    return value;
}

} // namespace

NetworkLogger::NetworkLogger(bool isEnabled, NetworkLoggerServices services)
    : writesRecords(isEnabled),
      services(std::move(services)),
      logFileURL(makeLogFileURL(*this->services.files)) {}

std::optional<std::filesystem::path> NetworkLogger::logFile(Platform::FileManager const& files) {
    auto const support = files.applicationSupportDirectory();
    if (!support) return std::nullopt;
    return *support / "Quillora" / "Logs" / "network.log";
}

void NetworkLogger::log(std::string_view endpoint, Platform::URLRequest const& request,
                        std::string_view response) const {
    if (!writesRecords) return;
    auto const calendar = services.region->currentCalendar();
    bool const hasText = request.httpBody && Foundation::Text::isValidUTF8(*request.httpBody);
    std::string record = "[" + Foundation::logTimestamp(services.clock->now(), calendar);
    record += "]\nendpoint: ";
    // Headers are never written, but a server may repeat them in what it answers.
    auto const token = tokenOf(request);
    record += withoutToken(endpoint, token);
    record += "\nrequest: ";
    record += hasText ? withoutToken(*request.httpBody, token) : "-";
    record += "\nresponse: ";
    record += withoutToken(response, token);
    record += "\n";
    services.console->print(record + "\n");
    append(record);
}

void NetworkLogger::append(std::string_view record) const {
    if (!logFileURL || !Foundation::Text::isValidUTF8(record)) return;
    services.files->appendToItem(*logFileURL, record);
}

} // namespace Networking
