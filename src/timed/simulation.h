#pragma once

#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::timed {

/// Reads or writes the recorded events of one weekday and hour. Ends normally for result 0, throws `Stop` for
/// any other. On a write `data` comes back as it was stored.
void Simulation(const link::Memory& memory, std::string_view readOrWrite, Byte weekday, Byte hour,
                Bytes& data);

}  // namespace velk::timed
