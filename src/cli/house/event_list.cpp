#include "cli/house/event_list.h"

#include <algorithm>

namespace velk::cli {

std::optional<std::size_t> endOfEvents(const Bytes& list) {
  constexpr std::size_t recordSize = 5;
  constexpr std::size_t longest = 255;  // what follows is too short for a record, and a full list has no mark
  constexpr Byte endMark = 255;
  for (std::size_t start = 0; start < std::min(list.size(), longest); start += recordSize) {
    if (byteAt(list, start) == endMark) return start;
  }
  return std::nullopt;
}

}  // namespace velk::cli
