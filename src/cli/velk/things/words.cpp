#include "cli/velk/things/words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <vector>

#include "cli/shared/escapes.h"
#include "values/digits.h"
#include "values/hex.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

constexpr std::array<std::string_view, weekdays> dayNames{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                          "Friday", "Saturday", "Sunday"};

std::string twoDigits(int number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string shortDay(int day) {
  return std::string(dayNames.at(static_cast<std::size_t>(day)).substr(0, 3));
}

bool isSameLetter(char a, char b) {
  return std::tolower(byteValue(a)) == std::tolower(byteValue(b));
}

bool isBeginning(std::string_view typed, std::string_view name) {
  return typed.size() <= name.size() && std::equal(typed.begin(), typed.end(), name.begin(), isSameLetter);
}

std::vector<std::string_view> partsOf(std::string_view text, char between) {
  std::vector<std::string_view> parts;
  for (;;) {
    const auto end = text.find(between);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

/// 0 for Monday; none for a beginning of two names.
std::optional<int> parseDay(std::string_view typed) {
  std::optional<int> found;
  for (int day = 0; day < weekdays; ++day) {
    if (typed.empty() || !isBeginning(typed, dayNames.at(static_cast<std::size_t>(day)))) continue;
    if (found) return std::nullopt;
    found = day;
  }
  return found;
}

struct DayGroup {
  std::string_view name;
  Byte days;
};

constexpr std::array dayGroups{
    DayGroup{"weekdays", 0x1F},
    DayGroup{"weekend", 0x60},
    DayGroup{"daily", 0x7F},
    DayGroup{"every day", 0x7F},
};

/// "Mon", or "Fri-Mon", which goes on past Sunday.
std::optional<Byte> parseRange(std::string_view typed) {
  const auto ends = partsOf(typed, '-');
  const auto first = parseDay(ends.front());
  const auto last = parseDay(ends.back());
  if (!first || !last || ends.size() > 2) return std::nullopt;
  Byte days = 0;
  for (int day = *first;; day = (day + 1) % weekdays) {
    days = static_cast<Byte>(days | 1 << day);
    if (day == *last) return days;
  }
}

std::optional<Byte> parseGroup(std::string_view typed) {
  const auto* const group = std::find_if(dayGroups.begin(), dayGroups.end(), [&](const DayGroup& row) {
    return row.name.size() == typed.size() && isBeginning(typed, row.name);
  });
  return group == dayGroups.end() ? parseRange(typed) : std::optional(group->days);
}

/// One or two digits of a number below `end`.
std::optional<Byte> parseDigits(std::string_view typed, int end) {
  const auto number = wholeNumber<Byte>(typed);
  return typed.size() <= 2 && number && *number < end ? number : std::nullopt;
}

}  // namespace

std::string label(std::string_view stored) {
  constexpr std::string_view around(" \0", 2);
  const auto first = stored.find_first_not_of(around);
  if (first == std::string_view::npos) return {};
  return shown(stored.substr(first, stored.find_last_not_of(around) - first + 1));
}

std::string_view withoutFill(std::string_view stored) {
  const bool isNone = stored.find_first_not_of('\0') == std::string_view::npos;
  return stored.substr(0, isNone ? 0 : stored.find_last_not_of(' ') + 1);
}

std::string timeOfDay(int hour, int minute) {
  return twoDigits(hour) + ":" + twoDigits(minute);
}

std::string timeOfDay(int hour, int minute, int second) {
  return timeOfDay(hour, minute) + ":" + twoDigits(second);
}

std::string weekday(int day) {
  if (day < 0 || day >= weekdays) return "day " + std::to_string(day);
  return std::string(dayNames.at(static_cast<std::size_t>(day)));
}

std::string daysOf(Byte selection) {
  constexpr Byte all = 127;
  if ((selection & all) == 0) return "no day";
  if ((selection & all) == all) return "every day";
  std::string text;
  for (int day = 0; day < weekdays;) {
    int end = day;
    while (end < weekdays && (selection >> end & 1) != 0) ++end;
    if (end > day) {
      text += (text.empty() ? "" : ", ") + shortDay(day);
      if (end > day + 1) text += (end == day + 2 ? ", " : "-") + shortDay(end - 1);
    }
    day = end + 1;
  }
  return text;
}

std::optional<Byte> parseDays(std::string_view typed) {
  Byte days = 0;
  for (std::string_view part : partsOf(typed, ',')) {
    part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
    const auto some = parseGroup(part);
    if (!some) return std::nullopt;
    days = static_cast<Byte>(days | *some);
  }
  return days;
}

std::optional<TimeOfDay> parseTime(std::string_view typed) {
  constexpr int sixty = 60;
  const auto parts = partsOf(typed, ':');
  if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
  const auto hour = parseDigits(parts[0], hoursOfDay);
  const auto minute = parseDigits(parts[1], sixty);
  const auto second = parts.size() == 3 ? parseDigits(parts[2], sixty) : Byte{0};
  const bool isWritten = std::all_of(parts.begin() + 1, parts.end(), [](auto p) { return p.size() == 2; });
  if (!hour || !minute || !second || !isWritten) return std::nullopt;
  return TimeOfDay{.hour = *hour, .minute = *minute, .second = *second};
}

std::string numbers(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += (text.empty() ? "" : " ") + std::to_string(byteValue(c));
  return text;
}

std::string named(const std::string& text, const std::string& name) {
  return name.empty() ? text : text + " " + name;
}

}  // namespace velk::cli
