#include "cli/velk/things/words.h"

#include <array>

#include "cli/shared/escapes.h"

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

}  // namespace

std::string label(std::string_view stored) {
  constexpr std::string_view around(" \0", 2);
  const auto first = stored.find_first_not_of(around);
  if (first == std::string_view::npos) return {};
  return shown(stored.substr(first, stored.find_last_not_of(around) - first + 1));
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

std::string numbers(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += (text.empty() ? "" : " ") + std::to_string(byteValue(c));
  return text;
}

std::string named(const std::string& text, const std::string& name) {
  return name.empty() ? text : text + " " + name;
}

}  // namespace velk::cli
