#pragma once

#include <array>

#include "link/memory.h"
#include "parameters/layouts.h"

namespace velk::parameters {

/// The bytes of one output that were read, by their place.
class OutputBytes {
 public:
  OutputBytes(const link::Memory& memory, Byte output) : memory_(memory), output_(output) {}

  /// Reads a run of bytes and keeps it; an empty run reads nothing.
  void fetch(const ByteRun& run);

  /// The byte at a place; run-time error 5 when no reply has brought it.
  [[nodiscard]] Byte at(Area area, Byte offset) const;

 private:
  static constexpr std::size_t mostRuns = 4;  ///< the mode, the layout's two runs, the further byte

  struct Fetched {
    ByteRun run;
    Bytes bytes;
  };

  const link::Memory& memory_;
  Byte output_;
  std::array<Fetched, mostRuns> fetched_;
  std::size_t count_ = 0;
};

}  // namespace velk::parameters
