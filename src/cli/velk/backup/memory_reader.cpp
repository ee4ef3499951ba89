#include "cli/velk/backup/memory_reader.h"

#include "cli/house/event_list.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/words.h"
#include "timed/simulation.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

std::string placeOf(Address at) {
  return "page " + std::to_string(at.page) + ", offset " + std::to_string(at.offset);
}

/// Fills the lines of one list of events, from the controller where they are not there yet.
class EventList {
 public:
  EventList(Serial& serial, Lines& lines) : serial_(serial), lines_(lines) {}

  /// Whether something had to be read.
  bool fill(int day, int hour) {
    constexpr int pageSize = 256;
    Address line = timed::eventList(static_cast<Byte>(day), static_cast<Byte>(hour));
    Bytes list;
    bool hasRead = false;
    for (int offset = 0; offset < pageSize; offset += lineSize) {
      line.offset = static_cast<Byte>(offset);
      auto found = lines_.find(line);
      if (found == lines_.end()) {
        found = lines_.emplace(line, readBytes(serial_, line, lineSize)).first;
        hasRead = true;
      }
      list += found->second;
      if (const auto end = endOfEvents(list)) {
        blankBehind(found->second, *end - static_cast<std::size_t>(offset));
        break;
      }
    }
    return hasRead;
  }

 private:
  static void blankBehind(Bytes& line, std::size_t end) {
    if (end < line.size()) std::fill(line.begin() + static_cast<std::ptrdiff_t>(end) + 1, line.end(), '\0');
  }

  Serial& serial_;
  Lines& lines_;
};

/// Whether a line's bytes are the same, but for those that the controller changes by itself.
bool isSame(Address line, std::string_view a, std::string_view b) {
  for (std::size_t i = 0; i < lineSize; ++i, ++line.offset) {
    if (a[i] != b[i] && !memory::isReadOnly(line)) return false;
  }
  return true;
}

}  // namespace

Bytes readBytes(Serial& serial, Address at, std::size_t count) {
  checkInterrupt();
  return readTransfer(serial, at, count, placeOf(at));
}

void writeBytes(Serial& serial, Address at, const Bytes& bytes) {
  checkInterrupt();
  writeTransfer(serial, at, bytes, placeOf(at));
}

Origin originOf(Serial& serial, const Lines& lines) {
  constexpr std::size_t samples = 64;
  std::vector<Address> telling;
  for (const Address line : fixedLines([](ThingKind /*kind*/) { return true; })) {
    const auto found = lines.find(line);
    if (found != lines.end() && !isSame(line, found->second, Bytes(lineSize, '\0'))) telling.push_back(line);
  }
  const std::size_t step = telling.size() / samples + 1;
  for (std::size_t i = 0; i < telling.size(); i += step) {
    const Address line = telling[i];
    const Bytes now = onlyConfiguration(line, readBytes(serial, line, lineSize));
    if (!isSame(line, now, lines.at(line))) return Origin::elsewhere;
  }
  return telling.empty() ? Origin::unknown : Origin::here;
}

void readMissing(Serial& serial, Lines& lines, const Wanted& wanted, const Step& step) {
  const std::vector<Address> fixed = fixedLines(wanted);
  const int days = wanted(ThingKind::events) ? weekdays : 0;
  const std::size_t total = fixed.size() + static_cast<std::size_t>(days) * hoursOfDay;
  std::size_t done = 0;
  std::size_t kept = 0;
  for (const Address line : fixed) {
    if (lines.contains(line)) {
      ++kept;
    } else {
      lines.emplace(line, onlyConfiguration(line, readBytes(serial, line, lineSize)));
    }
    step(++done, total, kept);
  }
  EventList events(serial, lines);
  for (int day = 0; day < days; ++day) {
    for (int hour = 0; hour < hoursOfDay; ++hour) {
      if (!events.fill(day, hour)) ++kept;
      step(++done, total, kept);
    }
  }
}

}  // namespace velk::cli
