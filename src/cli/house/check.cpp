#include "cli/house/check.h"

#include <set>
#include <stdexcept>

#include "cli/house/event_list.h"
#include "parameters/layouts.h"
#include "parameters/modes.h"
#include "timed/simulation.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

[[noreturn]] void fail(Address line, const std::string& why) {
  throw std::invalid_argument("line " + keyOf(line) + " " + why);
}

/// The lines of a list of events, up to the one with its end.
void checkEvents(const Lines& lines, Address line, std::set<Address>& expected) {
  constexpr int pageSize = 256;
  Bytes list;
  for (int offset = 0; offset < pageSize; offset += lineSize) {
    line.offset = static_cast<Byte>(offset);
    const auto found = lines.find(line);
    if (found == lines.end()) fail(line, "is missing");
    expected.insert(line);
    list += found->second;
    const auto end = endOfEvents(list);
    if (!end) continue;
    if (list.find_first_not_of('\0', *end + 1) != Bytes::npos) fail(line, "has more behind the last event");
    return;
  }
}

}  // namespace

void checkPlaces(const Lines& lines) {
  for (const auto& [line, bytes] : lines) {
    bool belongs = false;
    for (int i = 0; i < lineSize; ++i) {
      const bool isConfiguration = memory::thingAt(line.next(static_cast<std::size_t>(i))).has_value();
      belongs = belongs || isConfiguration;
      if (!isConfiguration && bytes[static_cast<std::size_t>(i)] != '\0') {
        fail(line, "has a value at byte " + std::to_string(i) + ", which belongs to nothing");
      }
    }
    if (!belongs) fail(line, "belongs to nothing");
  }
}

void checkComplete(const Lines& lines) {
  const std::vector<Address> fixed = fixedLines([](ThingKind /*kind*/) { return true; });
  std::set<Address> expected(fixed.begin(), fixed.end());
  for (const Address line : fixed) {
    if (!lines.contains(line)) fail(line, "is missing");
  }
  for (int day = 0; day < daysOfWeek; ++day) {
    for (int hour = 0; hour < hoursOfDay; ++hour) {
      checkEvents(lines, timed::eventList(static_cast<Byte>(day), static_cast<Byte>(hour)), expected);
    }
  }
  for (const auto& [line, bytes] : lines) {
    if (!expected.contains(line)) fail(line, "stands behind the last event");
  }
}

void checkModes(const Lines& lines) {
  for (int output = 1; output <= parameters::lastOutput; ++output) {
    const Byte mode = byteOf(
        lines, {.area = Area::external, .page = static_cast<Byte>(output), .offset = parameters::modeOffset});
    if (mode > parameters::lastMode) {
      throw std::invalid_argument("output " + std::to_string(output) + " has the mode " +
                                  std::to_string(mode) + ", which does not exist");
    }
  }
}

}  // namespace velk::cli
