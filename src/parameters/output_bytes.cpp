#include "parameters/output_bytes.h"

#include "values/runtime_error.h"

namespace velk::parameters {

void OutputBytes::fetch(const ByteRun& run) {
  if (run.size == 0) return;
  fetched_.at(count_++) = {run, memory_.read(run.size, addressOf(output_, run.area, run.at))};
}

Byte OutputBytes::at(Area area, Byte offset) const {
  for (const auto& [held, bytes] : std::span(fetched_).first(count_)) {
    if (held.holds(area, offset)) return byteAt(bytes, offset - held.at);
  }
  throw RuntimeError(RuntimeError::invalidArgument);
}

}  // namespace velk::parameters
