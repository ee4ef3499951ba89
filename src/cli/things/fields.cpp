#include "cli/things/fields.h"

namespace velk::cli {

Bytes readMemory(Serial& serial, Byte count, int page, int offset) {
  const Bytes reply = serial.ReadCom(count, static_cast<Byte>(page), static_cast<Byte>(offset), "V");
  const std::string what = "reading page " + std::to_string(page);
  expectDone(byteAt(reply, 0), what);
  if (reply.size() != count + std::size_t{1}) expectDone(100, what);
  return reply.substr(1);
}

}  // namespace velk::cli
