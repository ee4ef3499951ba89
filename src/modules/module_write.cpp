#include "modules/module_write.h"

#include <utility>

#include "modules/conversion.h"
#include "modules/records.h"
#include "modules/translation.h"
#include "values/result.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr Byte writeFlags = 192;

/// Sends a request and waits until the module has taken it. The controller's own module is not waited for.
void run(const Mailbox& mailbox, std::string_view serialNumber, Byte& result) {
  const Exchange exchange = mailbox.run(isOwnModule(serialNumber) ? Purpose::writeOwn : Purpose::writeRecord);
  if (!exchange.trigger.isZero()) throw Stop{otherFailure};
  result = success;
}

RequestHeader headerFor(const ModuleAccess& access, std::size_t direction) {
  return {.number = access.offset,
          .direction = static_cast<Byte>(direction),
          .serialNumber = access.serialNumber};
}

void writePieces(const Mailbox& mailbox, const ModuleAccess& access, const Subject& subject,
                 std::string_view data, Byte& result) {
  for (std::size_t start = 0; start < data.size(); start += pieceSize) {
    if (start != 0) mailbox.pause(seriesOf(subject).betweenPieces);
    const std::string_view piece = slice(data, start, pieceSize);
    mailbox.address(headerFor(access, piece.size() + writeFlags));
    mailbox.put(piece);
    run(mailbox, access.serialNumber, result);
    access.offset = checkedByte(access.offset + 1);
  }
}

/// The whole record goes into the long-record buffer, and one request has the module fetch it.
void writeLong(const Mailbox& mailbox, const ModuleAccess& access, Bytes data, Byte& result) {
  for (Byte position = 10; position <= 32; position += 2) data = ConvertTXSub(std::move(data), position);
  mailbox.putLong(data, Mailbox::LastBlock::padded);
  mailbox.address(headerFor(access, writeLongRecord));
  run(mailbox, access.serialNumber, result);
  access.offset = checkedByte(access.offset + 1);
}

}  // namespace

void writeModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result) {
  const Subject subject{.serialNumber = access.serialNumber, .known = identity.known};
  const Bytes data = translatedForWrite(subject, access.offset, access.data);
  if (writesLong(subject, access.offset)) {
    writeLong(mailbox, access, data, result);
  } else {
    writePieces(mailbox, access, subject, data, result);
  }
}

}  // namespace velk::modules
