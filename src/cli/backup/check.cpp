#include "cli/backup/check.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "cli/backup/event_list.h"
#include "cli/things/event.h"
#include "cli/things/output.h"
#include "cli/words.h"
#include "controller/modes.h"
#include "parameters/layouts.h"

namespace velk::cli {
namespace {

[[noreturn]] void fail(Spot line, const std::string& why) {
  throw std::invalid_argument("line " + keyOf(line) + " " + why);
}

Spot at(Spot line, int index) {
  line.offset = static_cast<Byte>(line.offset + index);
  return line;
}

/// The lines of a list of events, up to the one with its end.
void checkEvents(const Lines& lines, Spot line, std::set<Spot>& expected) {
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
      const bool isConfiguration = thingAt(at(line, i)).has_value();
      belongs = belongs || isConfiguration;
      if (!isConfiguration && bytes[static_cast<std::size_t>(i)] != '\0') {
        fail(line, "has a value at byte " + std::to_string(i) + ", which belongs to nothing");
      }
    }
    if (!belongs) fail(line, "belongs to nothing");
  }
}

void checkComplete(const Lines& lines) {
  const std::vector<Spot> fixed = fixedLines([](Kind /*kind*/) { return true; });
  std::set<Spot> expected(fixed.begin(), fixed.end());
  for (const Spot line : fixed) {
    if (!lines.contains(line)) fail(line, "is missing");
  }
  for (int day = 0; day < weekdays; ++day) {
    for (int hour = 0; hour < hoursOfDay; ++hour) {
      checkEvents(lines, {.area = Area::highBlock, .page = eventPage(day, hour), .offset = 0}, expected);
    }
  }
  for (const auto& [line, bytes] : lines) {
    if (!expected.contains(line)) fail(line, "stands behind the last event");
  }
}

void checkModes(const Lines& lines) {
  for (int output = 1; output <= lastOutput; ++output) {
    const Byte mode = byteOf(
        lines, {.area = Area::external, .page = static_cast<Byte>(output), .offset = parameters::modeOffset});
    if (mode > controller::lastMode) {
      throw std::invalid_argument("output " + std::to_string(output) + " has the mode " +
                                  std::to_string(mode) + ", which does not exist");
    }
  }
}

}  // namespace velk::cli
