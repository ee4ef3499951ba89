#pragma once

#include <array>
#include <map>
#include <string_view>
#include <vector>

#include "values/bytes.h"

namespace velk::simulator {

/// What a module can do besides keeping pieces. The numbers are bits.
enum Skill : Byte {
  identifies = 1,    ///< answers 15 bytes of piece 0 with its identification
  tellsVersion = 2,  ///< answers a read of 10 bytes with a version
  keepsSamples = 4,  ///< has two banks of samples
  keepsTexts = 8,    ///< long records are texts, each with a number of its own
};

/// A module as it comes from the factory.
struct ModuleRow {
  int serial;  ///< six digits
  unsigned skills;
  std::string_view name;        ///< up to 12 characters
  std::array<Byte, 3> version;  ///< CPU type, firmware version: major and minor part
  Byte firstPiece;              ///< where the record starts
  std::vector<int> record;      ///< its first bytes; the rest is 0
};

/// A simulated module: what it keeps and what it tells.
class SimulatedModule {
 public:
  static constexpr std::size_t pieceSize = 16;
  static constexpr std::size_t longSize = 128;   ///< of a sample, and of a long record that is read
  static constexpr std::size_t longWrite = 112;  ///< of a long record that is written
  static constexpr std::size_t textSize = 64;

  explicit SimulatedModule(const ModuleRow& row);

  [[nodiscard]] int serial() const { return serial_; }
  [[nodiscard]] bool can(Skill skill) const { return (skills_ & skill) != 0; }

  /// Name, CPU type, firmware version: 15 bytes and a zero.
  [[nodiscard]] const Bytes& identification() const { return identification_; }

  /// Ten bytes, of which the last two are the firmware version.
  [[nodiscard]] Bytes version() const;

  /// `count` bytes from the start of a piece on; they may reach into the pieces behind it.
  [[nodiscard]] Bytes read(Byte piece, std::size_t count) const;
  void write(Byte piece, std::string_view data);

  /// A sample up to its first block of 16 bytes that ends with 0.
  [[nodiscard]] Bytes sample(Byte bank, Byte number) const;
  void writeSample(Byte bank, Byte number, std::string_view data);

  /// A long record: a text, or the pieces from `number` on.
  [[nodiscard]] Bytes longRecord(Byte number) const;
  void writeLongRecord(Byte number, std::string_view data);

 private:
  int serial_;
  unsigned skills_;
  Bytes identification_;
  Bytes memory_;  ///< all pieces
  std::map<std::pair<Byte, Byte>, Bytes> samples_;
  std::map<Byte, Bytes> texts_;
};

}  // namespace velk::simulator
