#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "values/bytes.h"
#include "values/numbers.h"

/// Values of the controller as people read them.
namespace velk::cli {

/// A stored text without the blanks and zero bytes around it, as people typed it: see `shown`.
std::string label(std::string_view stored);

/// A text without the blanks that fill it up behind; one of zeros alone is empty.
std::string_view withoutFill(std::string_view stored);

/// "07:30".
std::string timeOfDay(int hour, int minute);

/// "07:30:05".
std::string timeOfDay(int hour, int minute, int second);

constexpr int weekdays = daysOfWeek;

/// The name of a weekday, 0 for Monday; "day N" outside 0 to 6.
std::string weekday(int day);

/// A day selection, bit 0 for Monday: "Mon-Fri", "Sat, Sun", "every day", "no day".
std::string daysOf(Byte selection);

/// The day selection that somebody typed: "Mon", "Mon-Fri", "Sat,Sun", "fri-mon", "weekdays", "weekend",
/// "daily". Names may be as short as no other day's; capitals do not count. None for any other text.
std::optional<Byte> parseDays(std::string_view typed);

/// A time of day.
struct TimeOfDay {
  Byte hour = 0;
  Byte minute = 0;
  Byte second = 0;
};

/// The time that somebody typed: "7:45", "07:45", "07:45:30". None for any other text.
std::optional<TimeOfDay> parseTime(std::string_view typed);

/// "5 255 2".
std::string numbers(std::string_view bytes);

/// "Hall ceiling" behind "output 5", if it has a name.
std::string named(const std::string& text, const std::string& name);

}  // namespace velk::cli
