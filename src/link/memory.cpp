#include "link/memory.h"

#include "link/transaction.h"

namespace velk::link {
namespace {

void stopUnlessGood(const Bytes& reply) {
  if (const Byte status = byteAt(reply, 0); status != 0) throw Stop{Result{status}};
}

}  // namespace

Bytes Memory::read(Byte count, Address at) const {
  Bytes reply = tryRead(count, at);
  stopUnlessGood(reply);
  return reply.erase(0, 1);
}

void Memory::write(Address at, std::string_view data) const {
  const Byte count = checkedByte(static_cast<long>(data.size()));
  stopUnlessGood(tranCeiv(link_, writeRequest(count, at, data)));
}

Bytes Memory::tryRead(Byte count, Address at) const {
  return tranCeiv(link_, readRequest(count, at));
}

}  // namespace velk::link
