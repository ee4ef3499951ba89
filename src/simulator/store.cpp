#include "simulator/store.h"

namespace velk::simulator {

Bytes Store::read(Address first, std::size_t count) const {
  Bytes bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = character((*this)[first.next(i)]);
  return bytes;
}

void Store::write(Address first, std::string_view data) {
  for (std::size_t i = 0; i < data.size(); ++i) (*this)[first.next(i)] = byteValue(data[i]);
}

}  // namespace velk::simulator
