#include "parameters/output_bytes.h"

#include "values/runtime_error.h"

namespace velk::parameters {

void Image::fetch(const Run& run) {
  if (run.size == 0) return;
  pieces_.at(count_++) = {run, memory_.read(run.size, addressOf(output_, run.area, run.at))};
}

Byte Image::at(Area area, Byte offset) const {
  for (const Piece& piece : std::span(pieces_).first(count_)) {
    if (piece.run.holds(area, offset)) return byteAt(piece.bytes, offset - piece.run.at);
  }
  throw RuntimeError(RuntimeError::invalidArgument);
}

}  // namespace velk::parameters
