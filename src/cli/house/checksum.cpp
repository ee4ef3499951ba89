#include "cli/house/checksum.h"

#include <array>

#include "values/bytes.h"

namespace velk::cli {
namespace {

constexpr std::array<std::uint32_t, 256> makeTable() {
  constexpr std::uint32_t reversedPolynomial = 0xEDB88320;
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? value >> 1 ^ reversedPolynomial : value >> 1;
    table.at(i) = value;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> table = makeTable();

}  // namespace

std::uint32_t crc32(std::string_view bytes) {
  std::uint32_t sum = ~std::uint32_t{0};
  for (const char c : bytes) sum = sum >> 8 ^ table[(sum ^ byteValue(c)) & 255];
  return ~sum;
}

}  // namespace velk::cli
