#include "cli/velk/connection/transfer.h"

#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "link/link.h"
#include "values/result.h"

namespace velk::cli {
namespace {

/// The status; an empty reply, or a good one without all its data, counts as none.
Byte statusOf(const Bytes& reply, std::size_t size) {
  if (reply.empty()) return noReply;
  const Byte status = byteValue(reply.front());
  return status == 0 && reply.size() < size + 1 ? Byte{noReply} : status;
}

/// The count as `ReadCom` and `WriteCom` take it, which holds the bank.
Byte countFor(link::Address at, std::size_t count) {
  constexpr std::size_t highBank = 128;
  return static_cast<Byte>(isHighBank(at.area) ? highBank + count : count);
}

const char* directionOf(link::Address at) {
  return isExternal(at.area) ? "V" : "H";
}

}  // namespace

Bytes readTransfer(Serial& serial, link::Address at, std::size_t count, const std::string& what) {
  Bytes reply;
  const auto read = [&] {
    reply = serial.ReadCom(countFor(at, count), at.high(), at.low(), directionOf(at));
    return statusOf(reply, count);
  };
  expectDone(retry().read(read), "reading " + what);
  // More than was asked for is not what was asked for.
  if (reply.size() != count + 1) expectDone(otherFailure, "reading " + what);
  return reply.erase(0, 1);
}

Bytes readMemory(Serial& serial, link::Address at, std::size_t count) {
  return readTransfer(serial, at, count, "page " + std::to_string(at.page));
}

void writeTransfer(Serial& serial, link::Address at, const Bytes& bytes, const std::string& what) {
  const auto write = [&] {
    return statusOf(serial.WriteCom(countFor(at, bytes.size()), at.high(), at.low(), directionOf(at), bytes),
                    0);
  };
  expectDone(retry().write(write, [&] { return readTransfer(serial, at, bytes.size(), what) == bytes; }),
             "writing " + what);
}

}  // namespace velk::cli
