#include "cli/transfer.h"

#include "cli/retry.h"
#include "link/link.h"

namespace velk::cli {
namespace {

/// The status; an empty reply, or a good one without all its data, counts as none.
Byte statusOf(const Bytes& reply, std::size_t size) {
  if (reply.empty()) return link::noReply;
  const Byte status = byteValue(reply.front());
  return status == 0 && reply.size() < size + 1 ? Byte{link::noReply} : status;
}

}  // namespace

Bytes readTransfer(Serial& serial, const Transfer& transfer, const std::string& what) {
  Bytes reply;
  const auto read = [&] {
    reply = serial.ReadCom(transfer.count, transfer.dph, transfer.dpl, transfer.direction);
    return statusOf(reply, transfer.size());
  };
  expectDone(retry().read(read), "reading " + what);
  // More than was asked for is not what was asked for.
  if (reply.size() != transfer.size() + 1) expectDone(100, "reading " + what);
  return reply.erase(0, 1);
}

void writeTransfer(Serial& serial, const Transfer& transfer, const Bytes& bytes, const std::string& what) {
  const auto write = [&] {
    return statusOf(serial.WriteCom(transfer.count, transfer.dph, transfer.dpl, transfer.direction, bytes),
                    0);
  };
  expectDone(retry().write(write, [&] { return readTransfer(serial, transfer, what) == bytes; }),
             "writing " + what);
}

}  // namespace velk::cli
