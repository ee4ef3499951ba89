#include "cli/house/lines.h"

#include "values/hex.h"

namespace velk::cli {
namespace {

bool lineHolds(Address line, const Wanted& wanted) {
  for (int i = 0; i < lineSize; ++i) {
    const auto thing = memory::thingAt(line.next(static_cast<std::size_t>(i)));
    if (thing && thing->kind != ThingKind::events && wanted(thing->kind)) return true;
  }
  return false;
}

}  // namespace

std::string digitsOf(Address at) {
  return hex(Bytes{character(at.page), character(at.offset)});
}

std::string keyOf(Address at) {
  return std::string(nameOf(at.area)) + " " + digitsOf(at);
}

Bytes onlyConfiguration(Address at, Bytes bytes) {
  for (char& c : bytes) {
    if (!memory::thingAt(at)) c = '\0';
    ++at.offset;
  }
  return bytes;
}

std::vector<Address> fixedLines(const Wanted& wanted) {
  constexpr int size = 256;
  std::vector<Address> lines;
  for (const Area area : {Area::external, Area::block, Area::highBlock}) {
    for (int page = 0; page < size; ++page) {
      for (int offset = 0; offset < size; offset += lineSize) {
        const Address line{
            .area = area, .page = static_cast<Byte>(page), .offset = static_cast<Byte>(offset)};
        if (lineHolds(line, wanted)) lines.push_back(line);
      }
    }
  }
  return lines;
}

}  // namespace velk::cli
