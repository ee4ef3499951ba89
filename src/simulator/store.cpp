#include "simulator/store.h"

#include "link/frames.h"

namespace velk::simulator {

Memory memoryOf(Byte command) {
  const bool external = (command & link::externalArea) != 0;
  if ((command & link::highBank) != 0) return external ? Memory::highExternal : Memory::highBlock;
  return external ? Memory::external : Memory::block;
}

Place after(Place place, std::size_t steps) {
  if (!isExternal(place.memory)) {
    place.dph = static_cast<Byte>(place.dph + steps);
    return place;
  }
  const std::size_t address = place.dph * std::size_t{256} + place.dpl + steps;
  place.dph = static_cast<Byte>(address >> 8);
  place.dpl = static_cast<Byte>(address);
  return place;
}

Bytes Store::read(Place first, std::size_t count) const {
  Bytes bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = character((*this)[after(first, i)]);
  return bytes;
}

void Store::write(Place first, std::string_view data) {
  for (std::size_t i = 0; i < data.size(); ++i) (*this)[after(first, i)] = byteValue(data[i]);
}

}  // namespace velk::simulator
