#include "values/numbers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>

namespace velk {
namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Whether a number in digits that is too large or too small for its type is the latter: whether its first
/// digit that counts stands behind the point, when the exponent has moved that.
bool isTiny(std::string_view written) {
  const auto end = std::min(written.find_first_of("eE"), written.size());
  const std::string_view mantissa = written.substr(0, end);
  long exponent = 0;
  if (end + 1 < written.size()) {
    const char* const sign = written.data() + end + 1;
    const auto read =
        std::from_chars(*sign == '+' ? sign + 1 : sign, written.data() + written.size(), exponent);
    if (read.ec != std::errc()) return *sign == '-';
  }
  const auto point = static_cast<long>(std::min(mantissa.find('.'), mantissa.size()));
  return static_cast<long>(mantissa.find_first_of("123456789")) >= point + exponent;
}

/// The longest decimal number at the start of a text, 0 when there is none, and what follows it.
struct Decimal {
  double number;
  std::string_view rest;
};

Decimal readDecimal(std::string_view text) {
  const char* first = text.data();
  const char* const last = first + text.size();
  const bool plus = first != last && *first == '+';
  if (plus) ++first;
  // from_chars would take "inf" and "nan", and a second sign after the plus.
  const auto* const digits = first != last && *first == '-' && !plus ? first + 1 : first;
  if (digits == last || (*digits != '.' && std::isdigit(byteValue(*digits)) == 0)) return {0, text};
  double number{};
  const auto [end, error] = std::from_chars(first, last, number);
  if (error == std::errc::invalid_argument) return {0, text};
  if (error == std::errc::result_out_of_range) {
    const std::string_view written(first, static_cast<std::size_t>(end - first));
    number = isTiny(written) ? 0 : std::numeric_limits<double>::infinity();
  }
  return {number, {end, static_cast<std::size_t>(last - end)}};
}

double parseRadix(std::string_view digits, int base) {
  std::uint64_t value{};
  const auto* const last = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), last, value, base);
  if (error != std::errc() || end != last) throw RuntimeError(RuntimeError::typeMismatch);
  return static_cast<double>(value);
}

}  // namespace

std::string plainText(double number) {
  std::array<char, 32> buffer{};
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, 15);
  std::string text(buffer.data(), end);
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c == 'e' ? 'E' : c; });
  return text;
}

std::string signedText(double number) {
  const std::string text = plainText(number);
  return text.front() == '-' ? text : " " + text;
}

double parseNumber(std::string_view text) {
  const std::string_view body = trimmed(text);
  const std::string_view prefix = body.substr(0, 2);
  if (equalsIgnoringCase(prefix, "&H")) return parseRadix(body.substr(2), 16);
  if (equalsIgnoringCase(prefix, "&O")) return parseRadix(body.substr(2), 8);
  const auto [number, rest] = readDecimal(body);
  if (body.empty() || !rest.empty()) throw RuntimeError(RuntimeError::typeMismatch);
  return number;
}

double leadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return readDecimal(text).number;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return std::tolower(byteValue(x)) == std::tolower(byteValue(y)); });
}

std::string zeroPadded(double number, Byte length) {
  // Dropping the sign position loses the sign of a negative number: hosts rely on -7 giving "007".
  const std::string digits = std::string(length, '0') + signedText(number).substr(1);
  return digits.substr(digits.size() - length);
}

Byte decimalOfBcd(Byte bcd) {
  const int tens = bcd >> 4;
  const int ones = bcd & 15;
  if (tens > 9 || ones > 9) throw RuntimeError(RuntimeError::typeMismatch);
  return static_cast<Byte>(tens * 10 + ones);
}

}  // namespace velk
