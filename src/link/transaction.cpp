#include "link/transaction.h"

#include "link/serial_transaction.h"
#include "link/tcp_transaction.h"

namespace velk::link {

Bytes tranCeiv(Link link, const Request& request, Byte attempts) {
  const Bytes frame = frameFor(request, link.settings);
  if (link.settings.TCP) {
    return tranceivTcp(link, {.attempts = attempts, .function = tcpMemory, .data = frame});
  }
  return serialTransaction(link, request, frame, attempts);
}

Bytes readCom(Link link, Byte count, Byte high, Byte low, std::string_view direction, Byte attempts) {
  return tranCeiv(link, readRequest(count, addressAt(areaOf(count, direction), high, low)), attempts);
}

Bytes writeCom(Link link, Byte count, Byte high, Byte low, std::string_view direction, std::string_view data,
               Byte attempts) {
  return tranCeiv(link, writeRequest(count, addressAt(areaOf(count, direction), high, low), data), attempts);
}

}  // namespace velk::link
