#include "cli/backup/memory_reader.h"

#include <atomic>
#include <csignal>

#include "cli/backup/event_list.h"
#include "cli/failure.h"
#include "cli/things/event.h"
#include "cli/words.h"

namespace velk::cli {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

/// A transfer as the link takes it.
struct Transfer {
  Byte count;
  Byte dph;
  Byte dpl;
  const char* direction;
};

Transfer transferOf(Spot spot, std::size_t count) {
  constexpr std::size_t highBank = 128;
  if (spot.area == Area::external) return {static_cast<Byte>(count), spot.page, spot.offset, "V"};
  const std::size_t bank = spot.area == Area::highBlock ? highBank : 0;
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

}  // namespace

Bytes readBytes(Serial& serial, Spot spot, std::size_t count) {
  checkInterrupt();
  const Transfer transfer = transferOf(spot, count);
  const Bytes reply = serial.ReadCom(transfer.count, transfer.dph, transfer.dpl, transfer.direction);
  expectDone(byteAt(reply, 0), "reading " + nameOf(spot));
  if (reply.size() != count + 1) expectDone(100, "reading " + nameOf(spot));
  return reply.substr(1);
}

void writeBytes(Serial& serial, Spot spot, const Bytes& bytes) {
  checkInterrupt();
  const Transfer transfer = transferOf(spot, bytes.size());
  const Bytes reply = serial.WriteCom(transfer.count, transfer.dph, transfer.dpl, transfer.direction, bytes);
  expectDone(byteAt(reply, 0), "writing " + nameOf(spot));
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

void watchInterrupts() {
  std::signal(SIGINT, [](int) { interrupted = true; });
}

void unwatchInterrupts() {
  std::signal(SIGINT, SIG_DFL);
}

void checkInterrupt() {
  if (interrupted) throw Failure(badResult, "interrupted");
}

}  // namespace velk::cli
