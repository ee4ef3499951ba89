#include "link/memory.h"

#include "link/transaction.h"

namespace velk::link {
namespace {

std::string letter(Area area) {
  return {static_cast<char>(area)};
}

void stopUnlessGood(const Bytes& reply) {
  if (const Byte status = byteAt(reply, 0); status != 0) throw Stop{status};
}

}  // namespace

Bytes Memory::read(Byte count, Address at, Area area) const {
  Bytes reply = tryRead(count, at, area);
  stopUnlessGood(reply);
  return reply.erase(0, 1);
}

void Memory::write(Address at, std::string_view data, Area area) const {
  write(checkedByte(static_cast<long>(data.size())), at, data, area);
}

void Memory::write(Byte count, Address at, std::string_view data, Area area) const {
  stopUnlessGood(writeCom(link_, count, at.dph, at.dpl, letter(area), data, 0));
}

Bytes Memory::tryRead(Byte count, Address at, Area area) const {
  return readCom(link_, count, at.dph, at.dpl, letter(area), 0);
}

}  // namespace velk::link
