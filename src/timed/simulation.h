#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"
#include "values/numbers.h"

namespace velk::timed {

/// Where the list of events of a weekday (0 for Monday) and hour begins; it has a page of its own.
constexpr link::Address eventList(Byte weekday, Byte hour) {
  const int page = weekday * bcdHoursOfDay + toBcd(hour);
  return {.area = link::Area::highBlock, .page = static_cast<Byte>(page), .offset = 0};
}

/// Reads or writes the recorded events of one weekday and hour. Ends normally for result 0, throws `Stop` for
/// any other. On a write `data` comes back as it was stored.
void Simulation(const link::Memory& memory, std::string_view readOrWrite, Byte weekday, Byte hour,
                Bytes& data);

/// Turns the first two bytes of each five-byte record from packed BCD into numbers, in `data` itself, and
/// returns the result. Run-time error 13 for a byte that is not BCD.
Bytes ConvertSim(Bytes& data);

}  // namespace velk::timed
