#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "values/bytes.h"

namespace velk {

/// A value of no fixed type, as automation hosts pass them: empty, a truth value, a number or a text.
/// Empty reads as 0 where a number is wanted and as "" where a text is wanted.
using Value = std::variant<std::monostate, bool, Byte, std::int16_t, std::int32_t, double, std::string>;

/// The types that arguments and results of methods have.
enum class Type : std::uint8_t { none, boolean, byte, integer, text, variant };

/// The value as a number. Truth values are -1 and 0; a text is read as a number, run-time error 13 (type
/// mismatch) where it is none.
double toNumber(const Value& value);

/// The value as a text; a number without sign position ("5", "-7", "0.5"), a truth value as "True" or
/// "False".
std::string toText(const Value& value);

/// The value in the given type: numbers are rounded half to even, run-time error 6 (overflow) where they do
/// not fit, 13 (type mismatch) where a text is not a number.
Value convert(const Value& value, Type type);

/// Whether the value already has the type.
bool holds(const Value& value, Type type);

}  // namespace velk
