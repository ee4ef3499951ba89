#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "values/bytes.h"

namespace velk::fuzz {

/// Takes a fuzzer's bytes apart from front to back. Behind the end every number is 0 and every text is empty,
/// so that a short input still stands for a whole run.
class Input {
 public:
  Input() = default;
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}
  explicit Input(std::string_view bytes) : rest_(bytes) {}

  [[nodiscard]] bool isEmpty() const { return rest_.empty(); }
  [[nodiscard]] std::size_t size() const { return rest_.size(); }

  Byte byte() {
    if (rest_.empty()) return 0;
    const Byte value = byteValue(rest_.front());
    rest_.remove_prefix(1);
    return value;
  }

  /// A number from 0 to `end` - 1.
  std::size_t below(std::size_t end) { return byte() % end; }

  std::int32_t number() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | byte();
    return static_cast<std::int32_t>(value);
  }

  /// Up to `count` bytes.
  Bytes bytes(std::size_t count) {
    const Bytes text(rest_.substr(0, count));
    rest_.remove_prefix(text.size());
    return text;
  }

  /// A text with its length, one byte, in front.
  Bytes text() {
    const std::size_t length = byte();
    return bytes(length);
  }

  Bytes rest() { return bytes(rest_.size()); }

 private:
  std::string_view rest_;
};

}  // namespace velk::fuzz
