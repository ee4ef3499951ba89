#include "cli/backup/memory_reader.h"

#include "cli/backup/event_list.h"
#include "cli/things/event.h"
#include "cli/transfer.h"
#include "cli/words.h"

namespace velk::cli {
namespace {

Transfer transferOf(Spot spot, std::size_t count) {
  if (spot.area == Area::external) return {static_cast<Byte>(count), spot.page, spot.offset, "V"};
  const std::size_t bank = spot.area == Area::highBlock ? Transfer::highBank : 0;
  return {static_cast<Byte>(bank + count), spot.offset, spot.page, "H"};
}

std::string nameOf(Spot spot) {
  return "page " + std::to_string(spot.page) + ", offset " + std::to_string(spot.offset);
}

Bytes onlyConfiguration(Spot spot, Bytes bytes) {
  for (char& c : bytes) {
    if (!thingAt(spot)) c = '\0';
    ++spot.offset;
  }
  return bytes;
}

/// Fills the lines of one list of events, from the controller where they are not there yet.
class EventList {
 public:
  EventList(Serial& serial, Lines& lines) : serial_(serial), lines_(lines) {}

  void fill(int day, int hour) {
    constexpr int pageSize = 256;
    Spot line{.area = Area::highBlock, .page = eventPage(day, hour), .offset = 0};
    Bytes list;
    for (int offset = 0; offset < pageSize; offset += lineSize) {
      line.offset = static_cast<Byte>(offset);
      auto found = lines_.find(line);
      if (found == lines_.end()) found = lines_.emplace(line, readBytes(serial_, line, lineSize)).first;
      list += found->second;
      if (const auto end = endOfEvents(list)) {
        blankBehind(found->second, *end - static_cast<std::size_t>(offset));
        return;
      }
    }
  }

 private:
  static void blankBehind(Bytes& line, std::size_t end) {
    if (end < line.size()) std::fill(line.begin() + static_cast<std::ptrdiff_t>(end) + 1, line.end(), '\0');
  }

  Serial& serial_;
  Lines& lines_;
};

/// Whether a line's bytes are the same, but for those that the controller changes by itself.
bool isSame(Spot line, std::string_view a, std::string_view b) {
  for (std::size_t i = 0; i < lineSize; ++i, ++line.offset) {
    if (a[i] != b[i] && !isReadOnly(line)) return false;
  }
  return true;
}

}  // namespace

Bytes readBytes(Serial& serial, Spot spot, std::size_t count) {
  checkInterrupt();
  return readTransfer(serial, transferOf(spot, count), nameOf(spot));
}

void writeBytes(Serial& serial, Spot spot, const Bytes& bytes) {
  checkInterrupt();
  writeTransfer(serial, transferOf(spot, bytes.size()), bytes, nameOf(spot));
}

Origin originOf(Serial& serial, const Lines& lines) {
  constexpr std::size_t samples = 64;
  std::vector<Spot> telling;
  for (const Spot line : fixedLines([](Kind /*kind*/) { return true; })) {
    const auto found = lines.find(line);
    if (found != lines.end() && !isSame(line, found->second, Bytes(lineSize, '\0'))) telling.push_back(line);
  }
  const std::size_t step = telling.size() / samples + 1;
  for (std::size_t i = 0; i < telling.size(); i += step) {
    const Spot line = telling[i];
    const Bytes now = onlyConfiguration(line, readBytes(serial, line, lineSize));
    if (!isSame(line, now, lines.at(line))) return Origin::elsewhere;
  }
  return telling.empty() ? Origin::unknown : Origin::here;
}

void readMissing(Serial& serial, Lines& lines, const Wanted& wanted, const Step& step) {
  const std::vector<Spot> fixed = fixedLines(wanted);
  const int days = wanted(Kind::events) ? weekdays : 0;
  const std::size_t total = fixed.size() + static_cast<std::size_t>(days) * hoursOfDay;
  std::size_t done = 0;
  for (const Spot line : fixed) {
    if (!lines.contains(line)) {
      lines.emplace(line, onlyConfiguration(line, readBytes(serial, line, lineSize)));
    }
    step(++done, total);
  }
  EventList events(serial, lines);
  for (int day = 0; day < days; ++day) {
    for (int hour = 0; hour < hoursOfDay; ++hour) {
      events.fill(day, hour);
      step(++done, total);
    }
  }
}

}  // namespace velk::cli
