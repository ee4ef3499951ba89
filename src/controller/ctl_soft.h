#pragma once

#include <string>
#include <string_view>

#include "link/memory.h"
#include "values/bytes.h"

namespace velk::controller {

/// One link of an input to a destination, as `Ctl_Soft` hands it in and out.
struct SoftLinkAccess {
  Byte source;
  Byte sub;  ///< sub-address of the source, 0 to 3
  Byte& destination;
  std::string& kind;  ///< "O" or "I"
  Byte& parameters1;
  Byte& parameters2;
  bool& highFlank;
  bool& lowFlank;
};

/// Where the two bytes of a link lie, the four of a source one behind the other.
constexpr link::Address linkRecord(Byte source, Byte sub) {
  return {.page = source, .offset = static_cast<Byte>(31 + 2 * sub)};
}

/// Where the flanks of a source's links lie: bit 0 to 3 the falling ones, bit 4 to 7 the rising ones.
constexpr link::Address flanksOf(Byte source) {
  return {.page = source, .offset = 254};
}

/// Reads or writes one link and its flanks. Ends normally for result 0, throws `Stop` for any other.
void Ctl_Soft(const link::Memory& memory, std::string_view readOrWrite, const SoftLinkAccess& link);

}  // namespace velk::controller
