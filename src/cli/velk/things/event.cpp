#include "cli/velk/things/event.h"

#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/things/words.h"
#include "values/numbers.h"
#include "values/result.h"

namespace velk::cli {
namespace {

std::string readingOf(const RecordedHour& list) {
  return "reading the simulation of " + weekday(list.day) + " " + timeOfDay(list.hour, 0);
}

}  // namespace

RecordedHour readHour(Serial& serial, Byte day, Byte hour, Unreadable unreadable) {
  constexpr std::size_t recordSize = 5;
  RecordedHour list{.day = day, .hour = hour};
  Bytes data;
  const Byte result = retry().read([&] { return serial.Simulation("R", day, hour, data); });
  list.readable = result != otherFailure;  // what is stored there are no events
  if (!list.readable && unreadable == Unreadable::isNoted) return list;
  expectDone(result, readingOf(list));
  for (std::size_t i = 0; i + recordSize <= data.size(); i += recordSize) {
    Bytes record = data.substr(i, recordSize);
    if (record == Bytes(recordSize, '\0')) continue;
    list.events.push_back({.day = day, .hour = hour, .record = std::move(record)});
  }
  return list;
}

Byte writeHour(Serial& serial, const RecordedHour& list) {
  Bytes data;
  for (const Event& event : list.events) data += event.record;
  return serial.Simulation("W", list.day, list.hour, data);
}

std::string timeOf(const Event& event) {
  return timeOfDay(event.hour, byteAt(event.record, 0), byteAt(event.record, 1));
}

std::string actionOf(const Event& event, OutputNames& names) {
  return names.titleOf(byteAt(event.record, 2)) + ": " + numbers(slice(event.record, 3));
}

Json jsonOf(const Event& event, OutputNames& names) {
  const Byte output = byteAt(event.record, 2);
  return {{"day", weekday(event.day)},
          {"time", timeOf(event)},
          {"data", jsonOfBytes(slice(event.record, 2))},
          {"output", output},
          {"name", names.of(output)}};
}

Details detailsOf(const std::vector<Event>& events, OutputNames& names) {
  Details details;
  for (const Event& event : events) {
    details.push_back(
        {"event " + std::to_string(details.size() + 1), timeOf(event) + " " + actionOf(event, names)});
  }
  return details;
}

}  // namespace velk::cli
