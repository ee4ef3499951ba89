#include "modules/sample.h"

#include "modules/model.h"
#include "values/result.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr std::size_t longestSample = 128;

RequestHeader headerFor(const SampleAccess& sample, int direction) {
  return {.number = checkedByte(sample.number + 16),
          .direction = checkedByte(direction + 64 * sample.bank),
          .serialNumber = sample.serialNumber};
}

void check(const SampleAccess& sample) {
  constexpr SerialRange fewerSamples{980101, 989999};
  if (sample.serialNumber.size() != 6) throw Stop{badSerialNumber};
  if (fewerSamples.contains(leadingNumber(sample.serialNumber)) && sample.number > 239)
    throw Stop{wrongLength};
  if (sample.number > 253) throw Stop{countTooLarge};
}

Byte write(const Mailbox& mailbox, const SampleAccess& sample) {
  if (sample.data.size() > longestSample) return wrongLength;
  mailbox.putLong(sample.data, Mailbox::LastBlock::padded);
  // Only now: a number or bank that no header can hold is found when the header is made, as a bad serial
  // number is. Hosts see the blocks on the wire before the method ends with 99.
  mailbox.address(headerFor(sample, 191));
  return mailbox.run(Purpose::writeSample).reply.result();
}

/// The blocks of a sample up to the one that ends with a zero byte.
Bytes storedBlocks(const Mailbox& mailbox) {
  Bytes kept;
  for (Byte position = 0; position < longestSample; position += pieceSize) {
    kept += mailbox.getLong(position);
    if (byteAt(kept, kept.size() - 1) == 0) break;
  }
  return kept;
}

Byte read(const Mailbox& mailbox, const SampleAccess& sample) {
  mailbox.address(headerFor(sample, 63));
  const Exchange exchange = mailbox.run(Purpose::readSample);
  if (!exchange.trigger.isZero()) return exchange.trigger.result();
  if (!exchange.reply.isZero()) return exchange.reply.result();
  sample.data = storedBlocks(mailbox);
  return success;
}

}  // namespace

Byte Sample(const Mailbox& mailbox, std::string_view readOrWrite, const SampleAccess& sample) {
  const bool reads = readOrWrite == "R";
  // Whatever ends a read leaves no data.
  if (reads) sample.data.clear();
  check(sample);
  return reads ? read(mailbox, sample) : write(mailbox, sample);
}

}  // namespace velk::modules
