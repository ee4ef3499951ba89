#include "cli/velk/things/switch_time.h"

#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"
#include "values/result.h"

namespace velk::cli {
namespace {

constexpr std::size_t entrySize = 3;

/// An action has two bytes, an entry three.
bool isAction(std::string_view entry) {
  return entry.size() < entrySize;
}

std::string actionText(std::string_view action) {
  return "action " + std::to_string(byteAt(action, 0)) + "." + numbers(action.substr(1));
}

std::string entryText(std::string_view entry, OutputNames& names) {
  if (isAction(entry)) return actionText(entry);
  return names.titleOf(byteAt(entry, 0)) + ": " + numbers(entry.substr(1));
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

std::string titleOf(const SwitchTime& time) {
  return "switch time " + std::to_string(time.block);
}

std::vector<Bytes> entriesOf(const SwitchTime& time) {
  std::vector<Bytes> entries;
  for (std::size_t i = 0; i < time.data.size(); i += entrySize) {
    entries.emplace_back(slice(time.data, i, entrySize));
  }
  return entries;
}

std::string actionOf(const SwitchTime& time, OutputNames& names) {
  if (!time.readable) return "(not readable)";
  std::string text;
  for (const Bytes& entry : entriesOf(time)) text += (text.empty() ? "" : "; ") + entryText(entry, names);
  return text.empty() ? "nothing" : text;
}

Json jsonOfEntry(std::string_view entry, OutputNames& names) {
  if (isAction(entry)) return {{"action", jsonOfBytes(entry)}};
  const Byte output = byteAt(entry, 0);
  return {{"output", output}, {"name", names.of(output)}, {"data", jsonOfBytes(entry.substr(1))}};
}

Json jsonOf(const SwitchTime& time, OutputNames& names) {
  Json json{{"block", time.block}, {"readable", time.readable}, {"time", timeOf(time)}};
  json["days"] = Json::array();
  for (int day = 0; day < weekdays; ++day) {
    if ((time.days >> day & 1) != 0) json["days"].push_back(weekday(day));
  }
  json["data"] = jsonOfBytes(time.data);
  json["switches"] = Json::array();
  for (const Bytes& entry : entriesOf(time)) json["switches"].push_back(jsonOfEntry(entry, names));
  return json;
}

Details detailsOf(const SwitchTime& time, OutputNames& names) {
  if (!isUsed(time)) return {{"time", "none"}};
  return {{"days", daysOf(time.days)}, {"time", timeOf(time)}, {"switches", actionOf(time, names)}};
}

}  // namespace velk::cli
