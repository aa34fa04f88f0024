#include "Samples/backend/HostileAnswer.h"

#include <boost/beast/zlib/deflate_stream.hpp>

#include <array>
#include <charconv>
#include <utility>

namespace Backend {
namespace {

using NamedHostility = std::pair<std::string_view, Hostility>;
constexpr std::array<NamedHostility, 12> table = {{
    {"slow-bytes", Hostility::slowBytes},
    {"silence", Hostility::silence},
    {"endless-headers", Hostility::endlessHeaders},
    {"gzip-bomb", Hostility::gzipBomb},
    {"endless-body", Hostility::endlessBody},
    {"value-bomb", Hostility::valueBomb},
    {"reset-at", Hostility::resetAt},
    {"wrong-content", Hostility::wrongContent},
    {"redirect", Hostility::redirect},
    {"no-content", Hostility::noContent},
    {"invalid-utf8", Hostility::invalidUTF8},
    {"tls-bad-certificate", Hostility::tlsBadCertificate},
}};

} // namespace

std::optional<HostileMode> HostileMode::fromText(std::string_view text) {
    auto const colon = text.find(':');
    auto const name = text.substr(0, colon);
    std::size_t bytes = 0;
    if (colon != std::string_view::npos) {
        auto const digits = text.substr(colon + 1);
        auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), bytes);
        bool const isWhole =
            !digits.empty() && read.ec == std::errc() && read.ptr == digits.data() + digits.size();
        if (!isWhole || name != "reset-at") return std::nullopt;
    }
    for (auto const& [known, hostility] : table) {
        if (name == known) return HostileMode{.hostility = hostility, .bytes = bytes};
    }
    return std::nullopt;
}

std::vector<std::string_view> HostileMode::names() {
    std::vector<std::string_view> names;
    for (auto const& [name, hostility] : table)
        names.push_back(name);
    return names;
}

std::string valueBomb() {
    constexpr std::size_t numbers = 1'500'000;
    std::string document = "[[";
    document.reserve(2 * numbers + 5);
    for (std::size_t count = 0; count < numbers; ++count)
        document += "0,";
    return document + "0]]";
}

std::string gzipBombPiece(bool isFirst) {
    namespace zlib = boost::beast::zlib;
    // Packs a thousand to one; each piece is flushed to a byte boundary, so that pieces can follow each
    // other.
    static std::string const zeros(std::size_t{1} << 20, '\0');
    zlib::deflate_stream stream;
    stream.reset(9, 15, 8, zlib::Strategy::normal);
    std::string packed(stream.upper_bound(zeros.size()) + 64, '\0');
    zlib::z_params parameters{};
    parameters.next_in = zeros.data();
    parameters.avail_in = zeros.size();
    parameters.next_out = packed.data();
    parameters.avail_out = packed.size();
    boost::system::error_code error;
    stream.write(parameters, zlib::Flush::full, error);
    packed.resize(parameters.total_out);
    constexpr std::string_view header("\x1f\x8b\x08\x00\x00\x00\x00\x00\x00\x03", 10);
    return isFirst ? std::string(header) + packed : packed;
}

} // namespace Backend
