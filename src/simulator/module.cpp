#include "simulator/module.h"

namespace velk::simulator {
namespace {

constexpr std::size_t pieces = 256;

/// A piece and what is behind it, up to the end of the last piece.
std::size_t start(Byte piece) {
  return piece * SimulatedModule::pieceSize;
}

template <class Key>
Bytes valueOr(const std::map<Key, Bytes>& map, const Key& key, std::size_t size) {
  const auto found = map.find(key);
  return padded(found == map.end() ? Bytes() : found->second, size, '\0');
}

}  // namespace

SimulatedModule::SimulatedModule(const ModuleRow& row)
    : serial_(row.serial), skills_(row.skills), memory_(pieces * pieceSize, '\0') {
  constexpr std::size_t nameSize = 12;
  identification_ = padded(row.name, nameSize);
  for (const Byte part : row.version) identification_ += character(part);
  identification_.resize(pieceSize, '\0');
  Bytes record;
  for (const int value : row.record) record += character(value);
  write(row.firstPiece, record);
}

Bytes SimulatedModule::version() const {
  constexpr std::size_t blank = 8;
  constexpr std::size_t firmware = 13;
  return Bytes(blank, '\0') + identification_.substr(firmware, 2);
}

Bytes SimulatedModule::read(Byte piece, std::size_t count) const {
  return padded(slice(memory_, start(piece), count), count, '\0');
}

void SimulatedModule::write(Byte piece, std::string_view data) {
  const std::string_view fitting = data.substr(0, memory_.size() - start(piece));
  memory_.replace(start(piece), fitting.size(), fitting);
}

Bytes SimulatedModule::sample(Byte bank, Byte number) const {
  return valueOr(samples_, {bank, number}, longSize);
}

void SimulatedModule::writeSample(Byte bank, Byte number, std::string_view data) {
  std::size_t end = pieceSize;
  while (end < data.size() && data[end - 1] != '\0') end += pieceSize;
  samples_[{bank, number}] = data.substr(0, end);
}

Bytes SimulatedModule::longRecord(Byte number) const {
  return can(keepsTexts) ? valueOr(texts_, number, textSize) : read(number, longSize);
}

void SimulatedModule::writeLongRecord(Byte number, std::string_view data) {
  if (can(keepsTexts)) {
    texts_[number] = data.substr(0, textSize);
  } else {
    write(number, data.substr(0, longWrite));
  }
}

}  // namespace velk::simulator
