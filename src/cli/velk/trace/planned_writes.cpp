#include "cli/velk/trace/planned_writes.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "cli/velk/backup/identity.h"
#include "cli/velk/backup/memory_reader.h"
#include "cli/velk/things/output.h"
#include "parameters/modes.h"
#include "simulator/mailbox.h"

namespace velk::cli {
namespace {

constexpr int linesOfPage = 16;

/// Calls `use` with the place and the value of each byte of a request's data or a reply's.
template <class Use>
void forEachByte(Address at, std::string_view bytes, Use use) {
  for (const char byte : bytes) {
    use(at, byte);
    at = at.next();
  }
}

std::string_view dataOf(const TracedRequest& request) {
  return slice(request.data, 0, request.count());
}

Address lineOf(Address at) {
  at.offset = static_cast<Byte>(at.offset / lineSize * lineSize);
  return at;
}

bool isThing(Address at) {
  return memory::thingAt(at) && !memory::isReadOnly(at);
}

bool namesOutputs(ThingKind kind) {
  return kind == ThingKind::links || kind == ThingKind::switchTime || kind == ThingKind::events;
}

/// All lines that hold bytes of some things, and what words about them need.
std::set<Address> linesOf(const std::set<Thing>& things) {
  std::set<Address> lines;
  const auto isWanted = [&](ThingKind kind) {
    return std::any_of(things.begin(), things.end(), [kind](Thing thing) { return thing.kind == kind; });
  };
  for (const Address line : fixedLines(isWanted)) {
    for (std::size_t i = 0; i < lineSize; ++i) {
      const auto thing = memory::thingAt(line.next(i));
      if (thing && things.contains(*thing)) lines.insert(line);
    }
  }
  if (std::none_of(things.begin(), things.end(), [](Thing thing) { return namesOutputs(thing.kind); }))
    return lines;
  for (int output = 1; output <= parameters::lastOutput; ++output) {
    lines.insert(outputNameAt(static_cast<Byte>(output)));
  }
  return lines;
}

/// The writes that reach things: which these are, and their bytes.
class TouchedThings {
 public:
  void add(const TracedRequest& request) {
    forEachByte(request.place(), dataOf(request), [&](Address at, char value) {
      if (!isThing(at)) return;
      const Thing thing = *memory::thingAt(at);
      things_.insert(thing);
      bytes_[at] = value;
      for (int i = 0; thing.kind == ThingKind::events && i < linesOfPage; ++i) {
        pages_.insert({.area = at.area, .page = at.page, .offset = static_cast<Byte>(i * lineSize)});
      }
    });
  }

  [[nodiscard]] std::vector<Difference> differences(Serial& serial) const {
    std::set<Address> lines = linesOf(things_);
    lines.insert(pages_.begin(), pages_.end());
    Backup before;
    for (const Address line : lines) {
      before.lines.emplace(line, onlyConfiguration(line, readBytes(serial, line, lineSize)));
    }
    Backup after = before;
    for (const auto& [at, value] : bytes_) after.lines.at(lineOf(at))[at.offset % lineSize] = value;
    return compare(before, after, {});
  }

 private:
  std::set<Thing> things_;
  std::map<Address, char> bytes_;
  std::set<Address> pages_;  ///< lines of lists of events
};

/// Follows the mailbox for modules, whose trigger tells what is asked.
class MailboxWrites {
 public:
  /// What a write asks a module for, if it is the trigger.
  std::optional<std::string> add(const TracedRequest& request) {
    image_[simulator::triggerPlace] = 0;
    forEachByte(request.place(), dataOf(request),
                [&](Address at, char value) { image_[at] = byteValue(value); });
    if (image_[simulator::triggerPlace] != simulator::triggered) return std::nullopt;
    return simulator::describe(
        simulator::decode(image_.read(simulator::requestPlace, simulator::requestSize), nullptr));
  }

 private:
  simulator::Store image_;
};

bool isOfModules(Address at) {
  const auto* const region = memory::regionAt(at);
  return region != nullptr &&
         (region->name.starts_with("mailbox") || region->name.starts_with("long-record"));
}

/// What a trace knows of its house.
struct Readings {
  std::map<Address, char> read;     ///< before it wrote there, if it does
  std::map<Address, char> written;  ///< at last
};

Readings readingsOf(const std::vector<TraceLine>& requests) {
  Readings readings;
  for (const TraceLine& line : requests) {
    const auto& [request, reply, late] = line.exchange;
    if (request.writes()) {
      forEachByte(request.place(), dataOf(request),
                  [&](Address at, char value) { readings.written[at] = value; });
    } else if (reply && reply->status == 0) {
      forEachByte(request.place(), reply->data, [&](Address at, char value) {
        if (memory::thingAt(at) && !readings.written.contains(at)) readings.read.emplace(at, value);
      });
    }
  }
  return readings;
}

/// Bytes from an address on that were read, with those that the trace has written where all of them stand here: it
/// was sent before.
Bytes asLeft(const Readings& readings, Address at, const Bytes& read, const Bytes& here) {
  Bytes left = read;
  for (std::size_t i = 0; i < here.size(); ++i) {
    const auto written = readings.written.find(at.next(i));
    if (written == readings.written.end()) continue;
    if (written->second != here[i]) return read;
    left[i] = here[i];
  }
  return left;
}

/// The lines that tell a house, as far as they were read whole.
Lines identityIn(const std::map<Address, char>& read) {
  Lines lines;
  const auto knows = [&](Address at) { return read.contains(at); };
  const auto add = [&](Address line) {
    Bytes bytes(lineSize, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (knows(line.next(i))) bytes[i] = read.at(line.next(i));
    }
    lines.emplace(line, bytes);
  };
  for (int output = 1; output <= parameters::lastOutput; ++output) {
    const Address name = outputNameAt(static_cast<Byte>(output));
    if (knows(name) && knows(name.next(lineSize - 1))) add(name);
  }
  if (std::all_of(firmwarePlaces().begin(), firmwarePlaces().end(), knows)) {
    add({.page = 0, .offset = 0});
    add({.page = 2, .offset = 0});
  }
  return lines;
}

/// Compares up to 32 lines of what was read.
std::string strangenessOfBytes(Serial& serial, const Readings& readings) {
  constexpr std::size_t most = 32;
  std::map<Address, Bytes> here;
  std::size_t all = 0;
  std::size_t same = 0;
  for (const auto& [at, value] : readings.read) {
    if (memory::isReadOnly(at) || value == '\0') continue;
    const Address line = lineOf(at);
    if (!here.contains(line)) {
      if (here.size() == most) break;
      here.emplace(line, readBytes(serial, line, lineSize));
    }
    ++all;
    const Bytes byte(1, here.at(line)[at.offset % lineSize]);
    if (asLeft(readings, at, Bytes(1, value), byte) == byte) ++same;
  }
  if (same * 2 >= all) return {};
  return "of " + std::to_string(all) + " bytes that the trace has read " + std::to_string(same) +
         " are the same";
}

}  // namespace

PlannedWrites planWrites(Serial& serial, const std::vector<TraceLine>& requests) {
  PlannedWrites planned;
  TouchedThings touched;
  MailboxWrites mailbox;
  const auto tell = [&](const std::string& text) {
    if (planned.others.empty() || planned.others.back() != text) planned.others.push_back(text);
  };
  for (const TraceLine& line : requests) {
    const TracedRequest& request = line.exchange.request;
    if (!request.writes()) continue;
    touched.add(request);
    bool isElsewhere = dataOf(request).empty();
    forEachByte(request.place(), dataOf(request),
                [&](Address at, char) { isElsewhere = isElsewhere || !(isThing(at) || isOfModules(at)); });
    if (isElsewhere) tell(request.text());
    if (const auto asked = mailbox.add(request)) tell(*asked);
  }
  planned.differences = touched.differences(serial);
  return planned;
}

std::string strangenessOf(Serial& serial, const std::vector<TraceLine>& requests) {
  const Readings readings = readingsOf(requests);
  Lines identity = identityIn(readings.read);
  if (identity.empty()) return strangenessOfBytes(serial, readings);
  const Lines here = readIdentity(serial, identity);
  for (auto& [line, bytes] : identity) {
    if (here.contains(line)) bytes = asLeft(readings, line, bytes, here.at(line));
  }
  return strangenessOf(identity, here);
}

bool isVolatile(Address at) {
  const auto* const region = memory::regionAt(at);
  return region != nullptr && (region->readOnly || region->name.starts_with("clock") || isOfModules(at));
}

}  // namespace velk::cli
