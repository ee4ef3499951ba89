#pragma once

#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "values/bytes.h"
#include "values/runtime_error.h"

namespace velk {

/// A number as text without sign position: "5", "-7", "0.5", "1E+20"; up to 15 significant digits.
std::string plainText(double number);

/// A number as text with a sign position: a blank or a minus before the digits (" 5", "-7").
std::string signedText(double number);

/// A text that is a number as a whole: blanks around it are allowed, and so is "&H1F" with up to 64 bits. The
/// fraction stands behind a point on every system. Run-time error 13 otherwise, for a decimal comma too.
double parseNumber(std::string_view text);

/// The number at the start of a text, read leniently: blanks are skipped, reading stops at the first
/// character that cannot continue a number, and a text without one gives 0.
double leadingNumber(std::string_view text);

bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// The number rounded half to even, as the given integer type; run-time error 6 (overflow) where it does not
/// fit.
template <class Integer>
Integer roundTo(double number) {
  const double rounded = std::nearbyint(number);
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    throw RuntimeError(RuntimeError::overflow);
  }
  return static_cast<Integer>(rounded);
}

/// A number's digits with zeros in front, the last `length` of them: 7 and 3 give "007".
std::string zeroPadded(double number, Byte length);

/// Packed BCD of a number from 0 to 159: tens in the high nibble, ones in the low. Run-time error 6 from 160
/// on.
constexpr Byte toBcd(Byte number) {
  return checkedByte(number / 10 * 16 + number % 10);
}

constexpr int daysOfWeek = 7;

/// The hours of a day, and the numbers that they run through in packed BCD: 0x00 to 0x23.
constexpr int hoursOfDay = 24;
constexpr int bcdHoursOfDay = toBcd(hoursOfDay - 1) + 1;

/// A packed-BCD byte as the number that its two hexadecimal digits spell (0x59 gives 59); run-time error 13
/// when a digit is A to F.
Byte decimalOfBcd(Byte bcd);

}  // namespace velk
