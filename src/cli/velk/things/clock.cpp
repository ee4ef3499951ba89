#include "cli/velk/things/clock.h"

#include <chrono>
#include <cstdlib>

#include "cli/shared/failure.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "controller/ctl_init.h"

namespace velk::cli {
namespace {

constexpr Byte clockPosition = 6;
constexpr Byte clockSize = 7;
constexpr int century = 2000;
constexpr int epoch = 1900;  ///< of std::tm

/// Weekdays as the controller counts them.
std::tm localTime() {
  const std::time_t now = std::time(nullptr);
  std::tm time = *std::localtime(&now);
  if (time.tm_wday == 0) time.tm_wday = weekdays;
  return time;
}

std::string dateOf(const std::tm& time) {
  const auto two = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n); };
  return std::to_string(time.tm_year + epoch) + "-" + two(time.tm_mon + 1) + "-" + two(time.tm_mday);
}

std::string timeText(const std::tm& time) {
  return timeOfDay(time.tm_hour, time.tm_min, time.tm_sec);
}

std::optional<std::chrono::sys_seconds> moment(const std::tm& time) {
  using namespace std::chrono;
  const year_month_day date{year(time.tm_year + epoch), month(static_cast<unsigned>(time.tm_mon + 1)),
                            day(static_cast<unsigned>(time.tm_mday))};
  if (!date.ok()) return std::nullopt;
  return sys_days(date) + hours(time.tm_hour) + minutes(time.tm_min) + seconds(time.tm_sec);
}

Json jsonOf(const std::tm& time) {
  return {{"weekday", weekday(time.tm_wday - 1)}, {"date", dateOf(time)}, {"time", timeText(time)}};
}

/// While one of these bytes is not zero, the clock stands still.
bool isHeld(Serial& serial) {
  return readMemory(serial, controller::clockHold, 2) != Bytes(2, '\0');
}

constexpr const char* heldWords = "the clock is held: it stands still until \"velk clock set\" has set it";

std::string afterFailure(Serial& serial) {
  try {
    return isHeld(serial) ? heldWords : "the clock is not held";
  } catch (const Failure&) {
    return "the clock may be held: whether it runs cannot be read";
  }
}

std::string distanceOf(const ClockReading& reading) {
  constexpr long minute = 60;
  constexpr long hour = 60 * minute;
  constexpr long day = 24 * hour;
  if (!reading.secondsAhead) return "unknown: the controller's date does not exist";
  const long seconds = std::labs(*reading.secondsAhead);
  if (seconds == 0) return "exact";
  std::string text;
  if (seconds >= day) text += std::to_string(seconds / day) + " d ";
  if (seconds >= hour) text += std::to_string(seconds % day / hour) + " h ";
  if (seconds >= minute) text += std::to_string(seconds % hour / minute) + " min ";
  return text + std::to_string(seconds % minute) + (*reading.secondsAhead > 0 ? " s ahead" : " s behind");
}

}  // namespace

ClockReading readClock(Serial& serial) {
  Bytes bytes;
  expectRead([&] { return serial.Ctl_Init("R", bytes, clockSize, clockPosition); }, "reading the clock");
  ClockReading reading{.computer = localTime()};
  reading.held = isHeld(serial);
  std::tm& time = reading.controller;
  time.tm_year = byteAt(bytes, 0) + century - epoch;
  time.tm_mon = byteAt(bytes, 1) - 1;
  time.tm_mday = byteAt(bytes, 2);
  time.tm_wday = byteAt(bytes, 3);
  time.tm_hour = byteAt(bytes, 4);
  time.tm_min = byteAt(bytes, 5);
  time.tm_sec = byteAt(bytes, 6);
  const auto controller = moment(time);
  const auto computer = moment(reading.computer);
  if (controller && computer) reading.secondsAhead = static_cast<long>((*controller - *computer).count());
  return reading;
}

void setClock(Serial& serial) {
  constexpr int lastSecond = 59;  // a leap second is none in the controller
  const std::tm time = localTime();
  Bytes bytes;
  for (const int part : {time.tm_year + epoch - century, time.tm_mon + 1, time.tm_mday, time.tm_wday,
                         time.tm_hour, time.tm_min, std::min(time.tm_sec, lastSecond)}) {
    bytes += character(part);
  }
  try {
    expectDone(serial.Ctl_Init("W", bytes, clockSize, clockPosition), "setting the clock");
  } catch (const Failure& failure) {
    throw Failure(failure.status, failure.what() + ("; " + afterFailure(serial)));
  }
}

std::string textOf(const std::tm& time) {
  return weekday(time.tm_wday - 1) + " " + dateOf(time) + " " + timeText(time);
}

std::string deviationOf(const ClockReading& reading) {
  return distanceOf(reading) + (reading.held ? std::string("; ") + heldWords : "");
}

std::string savingOf(const std::tm& time) {
  return time.tm_isdst > 0 ? "summer time" : "standard time";
}

Json jsonOf(const ClockReading& reading) {
  Json json{{"controller", jsonOf(reading.controller)}, {"computer", jsonOf(reading.computer)}};
  json["summer_time"] = reading.computer.tm_isdst > 0;
  json["held"] = reading.held;
  json["seconds_ahead"] = reading.secondsAhead ? Json(*reading.secondsAhead) : Json();
  return json;
}

}  // namespace velk::cli
