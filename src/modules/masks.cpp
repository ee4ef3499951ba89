#include "modules/masks.h"

#include <algorithm>
#include <array>

#include "link/memory.h"
#include "values/result.h"

namespace velk::modules {
namespace {

/// The masks by their codes: single channels downwards, none, then channels upwards together.
constexpr std::array<Byte, 13> masks{16, 8, 4, 2, 0, 1, 3, 7, 15, 31, 63, 127, 255};

Byte codeOf(Byte mask) {
  const auto* const found = std::ranges::find(masks, mask);
  if (found == masks.end()) throw link::Stop{badValue};
  return static_cast<Byte>(found - masks.begin());
}

Byte maskOf(Byte code) {
  if (code >= masks.size()) throw link::Stop{badValue};
  return masks.at(code);
}

Bytes translated(Bytes data, bool knownModel, Byte (*translate)(Byte)) {
  constexpr std::size_t fields = 8;
  const std::size_t first = knownModel ? 8 : 2;
  for (std::size_t i = first; i < std::min(first + fields, data.size()); ++i) {
    data[i] = character(translate(byteValue(data[i])));
  }
  return data;
}

}  // namespace

Bytes codesOfMasks(Bytes data, bool knownModel) {
  return translated(std::move(data), knownModel, codeOf);
}

Bytes masksOfCodes(Bytes data, bool knownModel) {
  return translated(std::move(data), knownModel, maskOf);
}

}  // namespace velk::modules
