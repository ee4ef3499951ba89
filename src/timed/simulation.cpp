#include "timed/simulation.h"

#include "modules/conversion.h"
#include "values/helpers.h"

namespace velk::timed {
namespace {

using link::Address;
using link::Area;
using link::Memory;

constexpr std::size_t eventSize = 5;
constexpr std::size_t blockSize = 16;
constexpr Byte highBank = 128;
constexpr std::size_t slotSize = 256;
constexpr char endMark = '\xFF';

Address blockOf(Byte slot, std::size_t offset) {
  return {.dph = checkedByte(static_cast<long>(offset)), .dpl = slot};
}

void write(const Memory& memory, Byte slot, Bytes& data) {
  // The caller's own text is converted and closed: it comes back as it lies in the controller.
  for (std::size_t start = 0; start < data.size(); start += eventSize) {
    for (const std::size_t i : {start, start + 1}) {
      const Byte bcd = values::DECtoBCD(byteAt(data, i));
      data[i] = character(bcd);
    }
  }
  if (data.size() < slotSize - 1) data += endMark;
  for (std::size_t offset = 0; offset < data.size(); offset += blockSize) {
    const std::string_view block = slice(data, offset, blockSize);
    memory.write(static_cast<Byte>(highBank + block.size()), blockOf(slot, offset), block, Area::block);
  }
}

/// The records in front of the end mark, which counts at the start of a record only; nothing while there is
/// none.
bool cutAtEndMark(Bytes& list) {
  for (std::size_t start = 0; start + 1 < list.size(); start += eventSize) {
    if (list[start] != endMark) continue;
    list.resize(start);
    return true;
  }
  return false;
}

void read(const Memory& memory, Byte slot, Bytes& data) {
  Bytes list;
  bool ended = false;
  for (std::size_t offset = 0; offset < slotSize && !ended; offset += blockSize) {
    list += memory.read(highBank + blockSize, blockOf(slot, offset), Area::block);
    ended = cutAtEndMark(list);
  }
  data = modules::ConvertSim(list);
}

}  // namespace

void Simulation(const Memory& memory, std::string_view readOrWrite, Byte weekday, Byte hour, Bytes& data) {
  constexpr Byte slotsPerDay = 36;
  if (weekday > 6 || hour > 23) throw link::Stop{105};
  const auto slot = static_cast<Byte>(weekday * slotsPerDay + values::DECtoBCD(hour));
  if (readOrWrite == "R") {
    read(memory, slot, data);
  } else {
    write(memory, slot, data);
  }
}

}  // namespace velk::timed
