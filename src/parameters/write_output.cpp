#include "parameters/write_output.h"

#include <algorithm>
#include <vector>

#include "parameters/modes.h"
#include "parameters/output_bytes.h"
#include "values/result.h"

namespace velk::parameters {
namespace {

using link::Memory;
using link::Stop;

constexpr std::size_t longestTransfer = 16;

/// One byte that a write touches.
struct TouchedByte {
  Area area;
  Byte at;
  Byte mask;    ///< the bits that the write gives
  bool shared;  ///< the byte that is there has to be known
  Byte value{};
};

/// An item and the character to put into it.
struct Assignment {
  const Item& item;
  char value;
};

std::vector<Assignment> checkedAssignments(const Layout& layout, const OutputAccess& access) {
  std::int16_t count = access.count;
  const Range range = resolveRange(layout, access.offset, count);
  if (count < 0 || access.parameters.size() != range.end - range.first) throw Stop{wrongLength};
  std::vector<Assignment> assignments;
  for (std::size_t k = range.first; k < range.end; ++k) {
    const Item& item = layout.items[k];
    const char value = access.parameters[k - range.first];
    if (!encoded(item, value, 0)) throw Stop{badValue};
    assignments.push_back({item, value});
  }
  return assignments;
}

bool precedes(const TouchedByte& a, const TouchedByte& b) {
  return a.area != b.area ? a.area == Area::external : a.at < b.at;
}

/// The bytes that the items lie in, in order of their addresses. The mode byte is not among them.
std::vector<TouchedByte> touchedBytes(const std::vector<Assignment>& assignments) {
  std::vector<TouchedByte> touched;
  for (const auto& [item, value] : assignments) {
    if (item.form == Form::stored) continue;
    const auto same = [&item = item](const TouchedByte& b) { return b.area == item.area && b.at == item.at; };
    const auto found = std::find_if(touched.begin(), touched.end(), same);
    if (found == touched.end()) {
      touched.push_back({.area = item.area, .at = item.at, .mask = item.mask, .shared = sharesItsByte(item)});
    } else {
      found->mask |= item.mask;
      found->shared = found->mask != 255;
    }
  }
  std::sort(touched.begin(), touched.end(), precedes);
  return touched;
}

/// Calls handle(first, last) for each run of neighbouring bytes that one transaction can carry.
template <class Handle>
void forEachRun(const std::vector<TouchedByte>& touched, Handle handle) {
  for (auto first = touched.begin(); first != touched.end();) {
    auto last = first + 1;
    while (last != touched.end() && last->area == first->area && last->at == (last - 1)->at + 1 &&
           static_cast<std::size_t>(last - first) < longestTransfer) {
      ++last;
    }
    handle(first, last);
    first = last;
  }
}

/// Reads the shared bytes and puts the items into them.
void compose(const Memory& memory, Byte output, const std::vector<Assignment>& assignments,
             std::vector<TouchedByte>& touched) {
  std::vector<TouchedByte> shared;
  std::copy_if(touched.begin(), touched.end(), std::back_inserter(shared),
               [](const TouchedByte& b) { return b.shared; });
  OutputBytes before(memory, output);
  forEachRun(shared, [&](auto first, auto last) {
    before.fetch({.at = first->at, .size = static_cast<Byte>(last - first), .area = first->area});
  });
  for (TouchedByte& byte : touched) {
    if (byte.shared) byte.value = before.at(byte.area, byte.at);
    for (const auto& [item, value] : assignments) {
      if (item.area == byte.area && item.at == byte.at)
        byte.value = encoded(item, value, byte.value).value_or(byte.value);
    }
  }
}

void store(const Memory& memory, Byte output, const std::vector<TouchedByte>& touched) {
  forEachRun(touched, [&](auto first, auto last) {
    Bytes bytes;
    std::for_each(first, last, [&](const TouchedByte& b) { bytes += character(b.value); });
    memory.write(addressOf(output, first->area, first->at), bytes);
  });
}

/// The number to store for the mode: what the item for it says, else the one that is there if the code may be
/// stored as it, else the code's own.
Byte storedNumber(const Layout& layout, Byte number, Byte old, const std::vector<Assignment>& assignments) {
  for (const auto& [item, value] : assignments) {
    if (item.form == Form::stored) return encoded(item, value, 0).value_or(number);
  }
  return layout.alsoStoredAs != 0 && old == layout.alsoStoredAs ? old : number;
}

/// Number 4 is "RO" or "DI" by the output's marker byte, so the marker has to follow the code. A marker that
/// says "DI" already is left as it is.
void mark(const Memory& memory, Byte output, bool roller) {
  const link::Address marker = rollerMarker(output);
  if (roller) {
    memory.write(marker, Bytes(1, character(output)));
  } else if (byteAt(memory.read(1, marker), 0) == output) {
    memory.write(marker, Bytes(1, '\0'));
  }
}

void storeMode(const Memory& memory, Byte output, Byte number) {
  memory.write({.page = output, .offset = modeOffset}, Bytes(1, character(number)));
}

/// Two outputs are the system's own: 1 holds the remote controls and 2 the signals, and neither takes any
/// other mode; both modes are welcome elsewhere too. This pairing is intended.
bool isReserved(Byte output, std::string_view mode) {
  return (output == 1 && mode != "RC") || (output == 2 && mode != "RS");
}

}  // namespace

void writeOutput(const Memory& memory, const OutputAccess& access) {
  const Byte number = ModeToNr(access.mode);
  if (number == 0 || isReserved(access.output, access.mode)) throw Stop{badMode};
  const Byte old = byteAt(memory.read(1, {.page = access.output, .offset = modeOffset}), 0);
  if (access.count == 0 && !layouts()[number - 1U].itemsWithoutCount) {
    storeMode(memory, access.output, number);
    return;
  }

  const Layout* const layout = layoutOf(access.mode);
  // A part of a code has a number, but no items: nothing was done.
  if (layout == nullptr) throw Stop{nothingDone};
  const std::vector<Assignment> assignments = checkedAssignments(*layout, access);
  std::vector<TouchedByte> touched = touchedBytes(assignments);
  compose(memory, access.output, assignments, touched);
  store(memory, access.output, touched);
  const Byte stored = storedNumber(*layout, number, old, assignments);
  if (stored == rollerMode) mark(memory, access.output, layout->marked);
  storeMode(memory, access.output, stored);
}

}  // namespace velk::parameters
