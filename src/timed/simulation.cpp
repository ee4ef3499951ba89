#include "timed/simulation.h"

#include "values/result.h"

namespace velk::timed {
namespace {

using link::Address;
using link::Memory;

constexpr std::size_t eventSize = 5;
constexpr std::size_t blockSize = 16;
constexpr std::size_t slotSize = 256;
constexpr char endMark = '\xFF';

/// Run-time error 6 behind the end of the page.
Address blockAt(Address list, std::size_t offset) {
  return list.next(checkedByte(static_cast<long>(offset)));
}

void write(const Memory& memory, Address list, Bytes& data) {
  // The caller's own text is converted and closed: it comes back as it lies in the controller.
  for (std::size_t start = 0; start < data.size(); start += eventSize) {
    for (const std::size_t i : {start, start + 1}) data[i] = character(toBcd(byteAt(data, i)));
  }
  if (data.size() < slotSize - 1) data += endMark;
  for (std::size_t offset = 0; offset < data.size(); offset += blockSize) {
    memory.write(blockAt(list, offset), slice(data, offset, blockSize));
  }
}

/// Cuts the list at its end mark, which counts at the start of a record only; false while there is none.
bool cutAtEndMark(Bytes& list) {
  for (std::size_t start = 0; start + 1 < list.size(); start += eventSize) {
    if (list[start] != endMark) continue;
    list.resize(start);
    return true;
  }
  return false;
}

void read(const Memory& memory, Address first, Bytes& data) {
  Bytes list;
  for (std::size_t offset = 0; offset < slotSize; offset += blockSize) {
    list += memory.read(blockSize, blockAt(first, offset));
    if (cutAtEndMark(list)) break;
  }
  data = ConvertSim(list);
}

}  // namespace

Bytes ConvertSim(Bytes& data) {
  for (std::size_t i = 0; i + 1 < data.size(); i += eventSize) {
    data[i] = character(decimalOfBcd(byteAt(data, i)));
    data[i + 1] = character(decimalOfBcd(byteAt(data, i + 1)));
  }
  return data;
}

void Simulation(const Memory& memory, std::string_view readOrWrite, Byte weekday, Byte hour, Bytes& data) {
  if (weekday > 6 || hour >= hoursOfDay) throw link::Stop{badValue};
  if (readOrWrite == "R") {
    read(memory, eventList(weekday, hour), data);
  } else {
    write(memory, eventList(weekday, hour), data);
  }
}

}  // namespace velk::timed
