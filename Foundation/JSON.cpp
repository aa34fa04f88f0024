#include "Foundation/JSON.h"

#include "Foundation/Numbers.h"
#include "Foundation/Text.h"

#include <boost/json/basic_parser_impl.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_set>

namespace Foundation::JSON {
namespace {

using boost::json::error_code;

constexpr std::size_t deepestNesting = 512;

// Builds the values from the parser's events: the parser's own tree would round numbers and let the last of
// equal keys win.
class Builder {
public:
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    Builder(std::size_t mostValues, std::function<void(Value)> const* take)
        : mostValues(mostValues),
          take(take) {}

    Value result;

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_object_begin(error_code& failure) { return isWithinBound(failure) && open(Object()); }
    bool on_object_end(std::size_t, error_code&) { return close(); }
    bool on_array_begin(error_code& failure) { return isWithinBound(failure) && open(Array()); }
    bool on_array_end(std::size_t, error_code&) { return close(); }

    bool on_key_part(boost::json::string_view part, std::size_t, error_code&) { return collect(part); }
    bool on_key(boost::json::string_view part, std::size_t, error_code&) {
        collect(part);
        containers.back().key = std::exchange(pending, {});
        return true;
    }
    bool on_string_part(boost::json::string_view part, std::size_t, error_code&) { return collect(part); }
    bool on_string(boost::json::string_view part, std::size_t, error_code& failure) {
        collect(part);
        return isWithinBound(failure) && add(std::exchange(pending, {}));
    }
    bool on_number_part(boost::json::string_view part, error_code&) { return collect(part); }
    bool on_int64(std::int64_t, boost::json::string_view part, error_code& failure) {
        return isWithinBound(failure) && number(part);
    }
    bool on_uint64(std::uint64_t, boost::json::string_view part, error_code& failure) {
        return isWithinBound(failure) && number(part);
    }
    bool on_double(double, boost::json::string_view part, error_code& failure) {
        return isWithinBound(failure) && number(part);
    }
    bool on_bool(bool value, error_code& failure) { return isWithinBound(failure) && add(value); }
    bool on_null(error_code& failure) { return isWithinBound(failure) && add(nullptr); }
    bool on_comment_part(boost::json::string_view, error_code&) { return true; }
    bool on_comment(boost::json::string_view, error_code&) { return true; }

private:
    struct Container {
        Value value;
        std::string key;
        std::unordered_set<std::string> keys;
    };

    // Counts a value that is about to be kept.
    bool isWithinBound(error_code& failure) {
        if (++values <= mostValues) return true;
        failure = boost::json::error::array_too_large;
        return false;
    }

    bool collect(boost::json::string_view part) {
        pending.append(part.data(), part.size());
        return true;
    }

    bool number(boost::json::string_view part) {
        collect(part);
        return add(Number{.text = std::exchange(pending, {})});
    }

    bool open(Value value) {
        containers.push_back({.value = std::move(value), .key = {}, .keys = {}});
        return true;
    }

    bool close() {
        auto value = std::move(containers.back().value);
        containers.pop_back();
        return add(std::move(value));
    }

    bool add(Value value) {
        if (containers.empty()) {
            result = std::move(value);
            return true;
        }
        auto& container = containers.back();
        if (auto* array = std::get_if<Array>(&container.value.storage)) {
            if (take != nullptr && containers.size() == 1) {
                values = 1; // The list itself.
                (*take)(std::move(value));
            } else {
                array->push_back(std::move(value));
            }
            return true;
        }
        // Of equal keys the first one stays.
        if (container.keys.insert(container.key).second)
            std::get<Object>(container.value.storage).emplace_back(container.key, std::move(value));
        return true;
    }

    bool add(Number value) {
        Value wrapped;
        wrapped.storage = std::move(value);
        return add(std::move(wrapped));
    }

    std::size_t mostValues;
    std::function<void(Value)> const* take; // Receives the elements of the outermost list; null keeps them.
    std::size_t values = 0;
    std::vector<Container> containers;
    std::string pending;
};

std::expected<Value, DecodeFailure> built(std::string_view document, std::size_t mostValues,
                                          std::function<void(Value)> const* take) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (document.starts_with(byteOrderMark)) document.remove_prefix(byteOrderMark.size());

    boost::json::parse_options options;
    options.max_depth = deepestNesting;
    boost::json::basic_parser<Builder> parser(options, mostValues, take);
    error_code failure;
    auto const read = parser.write_some(false, document.data(), document.size(), failure);
    bool const complete = !failure && parser.done() && read == document.size();
    if (!complete) return std::unexpected(DecodeFailure::dataCorrupted);
    return std::move(parser.handler().result);
}

// A decimal number taken apart: digits × 10^scale, without leading or trailing zeros; no digits mean zero.
struct Decimal {
    bool negative;
    std::string digits;
    std::int64_t scale;
};

Decimal takeApart(std::string_view text) {
    Decimal decimal{.negative = text.starts_with('-'), .digits = {}, .scale = 0};
    if (decimal.negative) text.remove_prefix(1);
    auto const exponentAt = std::min(text.find_first_of("eE"), text.size());
    auto exponent = text.substr(std::min(exponentAt + 1, text.size()));
    auto const mantissa = text.substr(0, exponentAt);

    for (char const character : mantissa) {
        if (character != '.') decimal.digits += character;
    }
    auto const point = mantissa.find('.');
    if (point != std::string_view::npos)
        decimal.scale -= static_cast<std::int64_t>(mantissa.size() - point - 1);

    bool const negativeExponent = exponent.starts_with('-');
    if (!exponent.empty() && (exponent.front() == '-' || exponent.front() == '+')) exponent.remove_prefix(1);
    // Past this bound no document's digits can bring the number back into range.
    constexpr std::int64_t bound = std::int64_t{1} << 60;
    std::int64_t magnitude = 0;
    for (char const digit : exponent)
        magnitude = std::min(bound, magnitude * 10 + (digit - '0'));
    decimal.scale += negativeExponent ? -magnitude : magnitude;

    decimal.digits.erase(0, std::min(decimal.digits.find_first_not_of('0'), decimal.digits.size()));
    while (decimal.digits.ends_with('0')) {
        decimal.digits.pop_back();
        ++decimal.scale;
    }
    return decimal;
}

// The exact integer; absent when there is a fraction or when it does not fit.
std::optional<std::int64_t> exactInteger(Decimal const& decimal) {
    if (decimal.digits.empty()) return 0;
    constexpr std::int64_t mostDigits = 19;
    if (decimal.scale < 0 || decimal.scale > mostDigits) return std::nullopt;
    auto const text = (decimal.negative ? "-" : "") + decimal.digits +
                      std::string(static_cast<std::size_t>(decimal.scale), '0');
    std::int64_t value = 0;
    auto const [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<double> nearestFloat(std::string_view text) {
    double value = 0;
    auto const failure = std::from_chars(text.data(), text.data() + text.size(), value).ec;
    if (failure == std::errc()) return std::isfinite(value) ? std::optional(value) : std::nullopt;
    // Out of range means too large or too close to zero, and only the digits tell which.
    auto const decimal = takeApart(text);
    bool const isTiny = decimal.scale + static_cast<std::int64_t>(decimal.digits.size()) < 0;
    if (!isTiny) return std::nullopt;
    return decimal.negative ? -0.0 : 0.0;
}

class Writer {
public:
    std::string document;
    std::optional<EncodeFailure> failure;

    void write(Value const& value) {
        std::visit([this](auto const& alternative) { write(alternative); }, value.storage);
    }

private:
    void write(std::nullptr_t) { document += "null"; }
    void write(bool value) { document += value ? "true" : "false"; }

    void write(Number const& number) {
        // A float that is not finite is kept as its name, which no number begins with.
        bool const isFinite = number.text.find_first_not_of("-+.0123456789eE") == std::string::npos;
        if (!isFinite || number.text.empty()) failure = EncodeFailure::nonFiniteNumber;
        document += number.text;
    }

    void write(std::string const& text) {
        if (!Text::isValidUTF8(text)) failure = EncodeFailure::invalidText;
        document += '"';
        for (char const character : text)
            writeCharacter(character);
        document += '"';
    }

    void writeCharacter(char character) {
        constexpr std::string_view hexDigits = "0123456789abcdef";
        switch (character) {
        case '"': document += "\\\""; return;
        case '\\': document += "\\\\"; return;
        case '/': document += "\\/"; return;
        case '\b': document += "\\b"; return;
        case '\f': document += "\\f"; return;
        case '\n': document += "\\n"; return;
        case '\r': document += "\\r"; return;
        case '\t': document += "\\t"; return;
        default: break;
        }
        auto const byte = static_cast<unsigned char>(character);
        if (byte >= 0x20) {
            document += character;
            return;
        }
        document += "\\u00";
        document += hexDigits[byte >> 4];
        document += hexDigits[byte & 0x0F];
    }

    void write(Array const& array) {
        document += '[';
        for (bool first = true; auto const& element : array) {
            if (!std::exchange(first, false)) document += ',';
            write(element);
        }
        document += ']';
    }

    void write(Object const& object) {
        document += '{';
        for (bool first = true; auto const& [key, value] : object) {
            if (!std::exchange(first, false)) document += ',';
            write(key);
            document += ':';
            write(value);
        }
        document += '}';
    }
};

template <typename T>
std::expected<T, DecodeFailure> alternative(Value const& value) {
    if (auto const* found = std::get_if<T>(&value.storage)) return *found;
    return std::unexpected(DecodeFailure::dataCorrupted);
}

std::string floatText(double value) {
    if (!std::isfinite(value)) return "not finite";
    std::array<char, 64> buffer;
    // Plain digits where people read them; an exponent only where the zeros would run on.
    auto const magnitude = std::abs(value);
    bool const isPlain = magnitude == 0 || (magnitude >= 1e-6 && magnitude < 1e17);
    auto const format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    auto const result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format);
    return {buffer.data(), result.ptr};
}

} // namespace

Value::Value(std::int64_t value) : storage(Number{.text = std::to_string(value)}) {}
Value::Value(double value) : storage(Number{.text = floatText(value)}) {}

Value const* Value::member(std::string_view name) const {
    auto const* object = std::get_if<Object>(&storage);
    if (object == nullptr) return nullptr;
    auto const entry = std::ranges::find(*object, name, &Object::value_type::first);
    return entry == object->end() ? nullptr : &entry->second;
}

bool operator==(Value const& left, Value const& right) {
    return left.storage == right.storage;
}

std::string_view description(DecodeFailure failure) {
    switch (failure) {
    case DecodeFailure::dataCorrupted:
        return "The data couldn’t be read because it isn’t in the correct format.";
    case DecodeFailure::keyMissing: return "The data couldn’t be read because it is missing.";
    }
    return {};
}

std::expected<Value, DecodeFailure> parse(std::string_view document, std::size_t mostValues) {
    return built(document, mostValues, nullptr);
}

std::expected<void, DecodeFailure> parseElements(std::string_view document, std::size_t mostValuesEach,
                                                 std::function<void(Value)> const& take) {
    // The list itself is a value, too.
    bool const isBounded = mostValuesEach != std::numeric_limits<std::size_t>::max();
    auto const list = built(document, isBounded ? mostValuesEach + 1 : mostValuesEach, &take);
    if (!list) return std::unexpected(list.error());
    if (!std::holds_alternative<Array>(list->storage)) return std::unexpected(DecodeFailure::dataCorrupted);
    return {};
}

std::expected<std::string, EncodeFailure> serialize(Value const& value) {
    Writer writer;
    writer.write(value);
    if (writer.failure) return std::unexpected(*writer.failure);
    return std::move(writer.document);
}

std::expected<std::int64_t, DecodeFailure> integer(Value const& value) {
    auto const number = alternative<Number>(value);
    if (!number) return std::unexpected(number.error());
    auto const decimal = takeApart(number->text);
    if (auto const exact = exactInteger(decimal)) return *exact;

    // A fraction too small for a float has vanished; one that it shows has not.
    auto const nearest = nearestFloat(number->text);
    bool const isInteger = nearest && std::abs(*nearest) < 0x1p53 && std::trunc(*nearest) == *nearest;
    if (!isInteger) return std::unexpected(DecodeFailure::dataCorrupted);
    return truncatedInteger(*nearest);
}

std::expected<double, DecodeFailure> number(Value const& value) {
    auto const number = alternative<Number>(value);
    if (!number) return std::unexpected(number.error());
    auto const nearest = nearestFloat(number->text);
    if (!nearest) return std::unexpected(DecodeFailure::dataCorrupted);
    return *nearest;
}

std::expected<bool, DecodeFailure> boolean(Value const& value) {
    return alternative<bool>(value);
}

std::expected<std::string, DecodeFailure> text(Value const& value) {
    return alternative<std::string>(value);
}

std::expected<std::vector<std::string>, DecodeFailure> textList(Value const& value) {
    auto const* array = std::get_if<Array>(&value.storage);
    if (array == nullptr) return std::unexpected(DecodeFailure::dataCorrupted);
    std::vector<std::string> texts;
    texts.reserve(array->size());
    for (auto const& element : *array) {
        auto const* text = std::get_if<std::string>(&element.storage);
        if (text == nullptr) return std::unexpected(DecodeFailure::dataCorrupted);
        texts.push_back(*text);
    }
    return texts;
}

std::expected<Value const*, DecodeFailure> required(Value const& object, std::string_view name) {
    if (!std::holds_alternative<Object>(object.storage)) return std::unexpected(DecodeFailure::dataCorrupted);
    auto const* member = object.member(name);
    if (member == nullptr || std::holds_alternative<std::nullptr_t>(member->storage))
        return std::unexpected(DecodeFailure::keyMissing);
    return member;
}

} // namespace Foundation::JSON
