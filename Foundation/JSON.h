#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// JSON (RFC 8259): strict on reading, compact on writing.
namespace Foundation::JSON {

struct Value;

/// A number as the document spells it, so that no reader loses digits.
struct Number {
    std::string text;
    friend bool operator==(Number const&, Number const&) = default;
};

using Array = std::vector<Value>;
/// Keys in document or declaration order.
using Object = std::vector<std::pair<std::string, Value>>;

/// One JSON value.
struct Value {
    std::variant<std::nullptr_t, bool, Number, std::string, Array, Object> storage;

    Value() : storage(nullptr) {}
    Value(std::nullptr_t) : storage(nullptr) {}
    Value(bool value) : storage(value) {}
    Value(std::int64_t value);
    Value(int value) : Value(static_cast<std::int64_t>(value)) {}
    /// A float in its shortest form; written as an encoding error when it is not finite.
    Value(double value);
    Value(std::string value) : storage(std::move(value)) {}
    Value(std::string_view value) : storage(std::string(value)) {}
    Value(char const* value) : storage(std::string(value)) {}
    Value(Array value) : storage(std::move(value)) {}
    Value(Object value) : storage(std::move(value)) {}

    /// The member of that name, the first of equal ones; null when this is no object or has none.
    [[nodiscard]] Value const* member(std::string_view name) const;

    friend bool operator==(Value const&, Value const&);
};

/// Why a document or value could not be read.
enum class DecodeFailure : std::uint8_t {
    dataCorrupted, ///< Not JSON, empty, not UTF-8, nested deeper than 512, or of the wrong type.
    keyMissing,    ///< A required key is missing or null.
};

/// The text that an error carries for the failure.
std::string_view description(DecodeFailure failure);

/// Why a value could not be written: a text that is not UTF-8, or a float that is not finite.
enum class EncodeFailure : std::uint8_t { invalidText, nonFiniteNumber };

/// Values that a document, or one element of a list, may hold where it comes from the network: a few
/// megabytes of brackets must not become gigabytes of values.
inline constexpr std::size_t mostForeignValues = 100'000;

/// Reads one document. A byte-order mark of UTF-8 is skipped; of equal keys the first wins. One that holds
/// more than `mostValues` values is `dataCorrupted`.
std::expected<Value, DecodeFailure> parse(std::string_view document,
                                          std::size_t mostValues = std::numeric_limits<std::size_t>::max());

/// Reads one document that is an array, and hands its elements over one by one, so that no more than one is
/// held in memory. A document that turns out to be none, or no array, fails after the elements before.
std::expected<void, DecodeFailure> parseElements(std::string_view document, std::size_t mostValuesEach,
                                                 std::function<void(Value)> const& take);

/// Writes without blanks: "/" escaped, control characters as \b \f \n \r \t or \u00xx, all else raw UTF-8.
std::expected<std::string, EncodeFailure> serialize(Value const& value);

/// The number as a signed 64-bit integer: "3.0" and "1e1" are integers, "3.5" and what does not fit are not.
std::expected<std::int64_t, DecodeFailure> integer(Value const& value);

/// The number as the nearest 64-bit float.
std::expected<double, DecodeFailure> number(Value const& value);

std::expected<bool, DecodeFailure> boolean(Value const& value);
std::expected<std::string, DecodeFailure> text(Value const& value);

/// A list of texts; one member of another type fails the whole.
std::expected<std::vector<std::string>, DecodeFailure> textList(Value const& value);

/// The member of an object that must be there and not null.
std::expected<Value const*, DecodeFailure> required(Value const& object, std::string_view name);

} // namespace Foundation::JSON
