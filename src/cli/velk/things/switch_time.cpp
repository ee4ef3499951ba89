#include "cli/velk/things/switch_time.h"

#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"
#include "values/result.h"

namespace velk::cli {
namespace {

constexpr std::size_t entrySize = 3;

std::string entryText(std::string_view entry) {
  if (entry.size() < entrySize) {
    return "action " + std::to_string(byteAt(entry, 0)) + "." + numbers(entry.substr(1));
  }
  return "output " + std::to_string(byteAt(entry, 0)) + ": " + numbers(entry.substr(1));
}

}  // namespace

SwitchTime readSwitchTime(Serial& serial, Byte block) {
  SwitchTime time{.block = block};
  const Byte result = retry().read(
      [&] { return serial.SwitchTime("R", block, time.days, time.hour, time.minute, time.data); });
  time.readable = result != otherFailure;  // what is stored there is no switch time
  if (time.readable) expectDone(result, "reading switch time " + std::to_string(block));
  return time;
}

bool isUsed(const SwitchTime& time) {
  return !time.readable || time.days != 0 || time.hour != 0 || time.minute != 0 || !time.data.empty();
}

std::string timeOf(const SwitchTime& time) {
  return timeOfDay(time.hour, time.minute);
}

std::string actionOf(const SwitchTime& time) {
  if (!time.readable) return "(not readable)";
  std::string text;
  for (std::size_t i = 0; i < time.data.size(); i += entrySize) {
    text += (text.empty() ? "" : "; ") + entryText(slice(time.data, i, entrySize));
  }
  return text.empty() ? "nothing" : text;
}

Json jsonOf(const SwitchTime& time) {
  Json json{{"block", time.block}, {"readable", time.readable}, {"time", timeOf(time)}};
  json["days"] = Json::array();
  for (int day = 0; day < weekdays; ++day) {
    if ((time.days >> day & 1) != 0) json["days"].push_back(weekday(day));
  }
  json["data"] = jsonOfBytes(time.data);
  return json;
}

Details detailsOf(const SwitchTime& time) {
  if (!isUsed(time)) return {{"time", "none"}};
  return {{"days", daysOf(time.days)}, {"time", timeOf(time)}, {"switches", actionOf(time)}};
}

}  // namespace velk::cli
