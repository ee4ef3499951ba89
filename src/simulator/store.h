#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "values/bytes.h"

namespace velk::simulator {

/// The four memories of 64 KiB that command bytes select: direction "V" or not, low or high bank.
enum class Memory : Byte { block, external, highBlock, highExternal };

/// The memory that a command byte selects.
Memory memoryOf(Byte command);

/// Whether the bytes of a transfer lie at successive addresses; else at successive high address bytes, the
/// low byte being the page.
constexpr bool isExternal(Memory memory) {
  return memory == Memory::external || memory == Memory::highExternal;
}

/// One byte in the controller.
struct Place {
  Memory memory = Memory::external;
  Byte dph = 0;  ///< high address byte
  Byte dpl = 0;  ///< low address byte

  friend bool operator==(const Place&, const Place&) = default;
};

/// The place `steps` further in the order of a transfer. The external memories wrap behind 0xFFFF, a page of
/// the block memories behind its byte 255.
Place after(Place place, std::size_t steps);

/// The bytes of all four memories.
class Store {
 public:
  static constexpr std::size_t memories = 4;
  static constexpr std::size_t memorySize = 65536;

  Byte& operator[](Place place) { return cells_[index(place)]; }
  Byte operator[](Place place) const { return cells_[index(place)]; }

  /// The bytes of a transfer from a place on.
  [[nodiscard]] Bytes read(Place first, std::size_t count) const;
  void write(Place first, std::string_view data);

  friend bool operator==(const Store&, const Store&) = default;

 private:
  static std::size_t index(Place place) {
    return static_cast<std::size_t>(place.memory) * memorySize + place.dph * std::size_t{256} + place.dpl;
  }

  std::vector<Byte> cells_ = std::vector<Byte>(memories * memorySize);
};

}  // namespace velk::simulator
