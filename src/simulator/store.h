#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "link/address.h"
#include "values/bytes.h"

namespace velk::simulator {

using link::Address;
using link::Area;

/// The bytes of all four areas.
class Store {
 public:
  static constexpr std::size_t areaSize = 65536;

  Byte& operator[](Address at) { return cells_[index(at)]; }
  Byte operator[](Address at) const { return cells_[index(at)]; }

  /// The bytes of a transfer from an address on.
  [[nodiscard]] Bytes read(Address first, std::size_t count) const;
  void write(Address first, std::string_view data);

  /// The 256 bytes of a page.
  [[nodiscard]] std::span<const Byte> page(Area area, Byte page) const {
    constexpr std::size_t pageSize = 256;
    return std::span(cells_).subspan(index({.area = area, .page = page, .offset = 0}), pageSize);
  }

  friend bool operator==(const Store&, const Store&) = default;

 private:
  static std::size_t index(Address at) {
    return static_cast<std::size_t>(at.area) * areaSize + at.page * std::size_t{256} + at.offset;
  }

  std::vector<Byte> cells_ = std::vector<Byte>(link::areaNames.size() * areaSize);
};

}  // namespace velk::simulator
