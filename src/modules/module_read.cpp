#include "modules/module_read.h"

#include <algorithm>

#include "modules/records.h"
#include "modules/translation.h"
#include "modules/version.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr Byte versionRequest = 10;

/// One request with a reply. False when the controller did not clear the trigger.
bool request(const Mailbox& mailbox, const ModuleAccess& access, int direction) {
  mailbox.address({.number = access.offset,
                   .direction = static_cast<Byte>(direction),
                   .serialNumber = access.serialNumber,
                   .padded = true});
  const Exchange exchange = mailbox.run(Purpose::readRecord);
  if (!exchange.trigger.isZero()) return false;
  if (const Byte result = resultOf(exchange.reply); result != 0) throw Stop{Result{result}};
  return true;
}

/// The version request of some types: a reply of ten bytes, of which the last two are the firmware version of
/// the part behind this offset. An answer that does not come is no reason to give the record up.
void requestVersion(const Mailbox& mailbox, const ModuleAccess& access, const RecordRow& row) {
  constexpr Byte versionPlace = 8;
  if (!request(mailbox, access, versionRequest) || !row.traits.firmware) return;
  access.firmware = firmwareText(mailbox.get(2, versionPlace));
}

void readPieces(const Mailbox& mailbox, const ModuleAccess& access, const Subject& subject, Byte length,
                Byte& result) {
  const Byte flag = subject.known || seriesOf(subject).readFlag ? readFlag : 0;
  for (int rest = length; rest > 0; rest -= pieceSize) {
    const auto size = static_cast<Byte>(std::min<int>(rest, pieceSize));
    const bool answered = request(mailbox, access, size + flag);
    // A piece whose trigger stays set is left out without an error: hosts count on getting the others.
    if (answered) {
      access.data += mailbox.get(size);
      result = 0;
    }
    access.offset = checkedByte(access.offset + 1);
  }
}

/// A record of up to 128 bytes in the long-record buffer; its first byte is its length.
void readLong(const Mailbox& mailbox, const ModuleAccess& access, Byte& result) {
  constexpr Byte longest = 128;
  if (request(mailbox, access, readLongRecord)) {
    Bytes record = mailbox.getLong(0);
    const Byte length = std::min(byteAt(record, 0), longest);
    for (Byte block = pieceSize; block < longest && record.size() < length; block += pieceSize) {
      record += mailbox.getLong(block);
    }
    record.resize(std::min<std::size_t>(record.size(), length));
    access.data = record;
    result = 0;
  }
  access.offset = checkedByte(access.offset + 1);
}

}  // namespace

void readModule(const Mailbox& mailbox, const ModuleAccess& access, const Identity& identity, Byte& result) {
  const Subject subject{.serialNumber = access.serialNumber, .known = identity.known};
  const Byte start = access.offset;
  access.data.clear();
  if (seriesOf(subject).longRead) {
    readLong(mailbox, access, result);
  } else {
    const RecordRow& row = rowFor(subject, start);
    if (asksVersion(row, start)) requestVersion(mailbox, access, row);
    readPieces(mailbox, access, subject, readLength(subject, start), result);
  }
  translateRead(subject, start, access.data);
}

}  // namespace velk::modules
