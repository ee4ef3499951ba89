#include "values/value.h"

#include <type_traits>
#include <utility>

#include "values/numbers.h"
#include "values/runtime_error.h"

namespace velk {
namespace {

double numberOf(std::monostate /*empty*/) {
  return 0;
}
double numberOf(bool truth) {
  return truth ? -1 : 0;
}
double numberOf(const std::string& text) {
  return parseNumber(text);
}
template <class Number>
double numberOf(Number number) {
  return static_cast<double>(number);
}

std::string textOf(std::monostate /*empty*/) {
  return {};
}
std::string textOf(bool truth) {
  return truth ? "True" : "False";
}
std::string textOf(const std::string& text) {
  return text;
}
template <class Number>
std::string textOf(Number number) {
  return plainText(number);
}

template <class Integer, class Held>
Integer integerOf(const Held& held) {
  if constexpr (std::is_same_v<Held, bool>) {
    // A truth value fills the whole integer: true is 255 as a byte and -1 as a signed integer.
    return static_cast<Integer>(held ? -1 : 0);
  } else if constexpr (std::is_integral_v<Held>) {
    // What hosts mostly pass: rounding would take as long as the rest of a simple call.
    if (!std::in_range<Integer>(held)) throw RuntimeError(RuntimeError::overflow);
    return static_cast<Integer>(held);
  } else {
    return roundTo<Integer>(numberOf(held));
  }
}

template <class Integer>
Integer toInteger(const Value& value) {
  return std::visit([](const auto& held) { return integerOf<Integer>(held); }, value);
}

bool toBoolean(const Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  if (text != nullptr && equalsIgnoringCase(*text, "true")) return true;
  if (text != nullptr && equalsIgnoringCase(*text, "false")) return false;
  return toNumber(value) != 0;
}

}  // namespace

double toNumber(const Value& value) {
  return std::visit([](const auto& held) { return numberOf(held); }, value);
}

std::string toText(const Value& value) {
  return std::visit([](const auto& held) { return textOf(held); }, value);
}

Value convert(const Value& value, Type type) {
  switch (type) {
    case Type::boolean:
      return toBoolean(value);
    case Type::byte:
      return toInteger<Byte>(value);
    case Type::integer:
      return toInteger<std::int16_t>(value);
    case Type::text:
      return toText(value);
    case Type::variant:
      return value;
    case Type::none:
      break;
  }
  return {};
}

bool holds(const Value& value, Type type) {
  switch (type) {
    case Type::boolean:
      return std::holds_alternative<bool>(value);
    case Type::byte:
      return std::holds_alternative<Byte>(value);
    case Type::integer:
      return std::holds_alternative<std::int16_t>(value);
    case Type::text:
      return std::holds_alternative<std::string>(value);
    case Type::variant:
      return true;
    case Type::none:
      break;
  }
  return std::holds_alternative<std::monostate>(value);
}

}  // namespace velk
