#include "modules/gsm_text.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr Byte readLongRecord = 31;
constexpr Byte writeLongRecord = 159;
constexpr std::size_t textSize = 64;
constexpr int attempts = 3;

/// The blocks of a text. A bad status of the first ends the method, one of the others only the attempt.
Byte readBlocks(const Mailbox& mailbox, Bytes& data) {
  Bytes text = mailbox.getLong(0);
  try {
    for (Byte position = pieceSize; position < textSize; position += pieceSize)
      text += mailbox.getLong(position);
  } catch (const Stop& stop) {
    return stop.result;
  }
  data = text;
  return 0;
}

Byte readOnce(const Mailbox& mailbox, Bytes& data) {
  const Exchange exchange = mailbox.run({.replyTime = Seconds(1)});
  const Polled& trigger = exchange.trigger;
  if (!trigger.isZero()) return trigger.present && trigger.value != 0 ? trigger.value : trigger.status;
  const Byte result = resultOf(exchange.reply);
  return result != 0 ? result : readBlocks(mailbox, data);
}

Byte read(const Mailbox& mailbox, const Header& header, Bytes& data) {
  // Only the trigger is repeated: the header stays, but for the reply code over its marker.
  mailbox.address(header, false);
  Byte result = 99;
  for (int i = 0; i < attempts && result != 0; ++i) result = readOnce(mailbox, data);
  return result;
}

Byte write(const Mailbox& mailbox, const Header& header, std::string_view data) {
  mailbox.putLong(data, Mailbox::LastBlock::cut);
  mailbox.address(header, false);
  const Exchange exchange = mailbox.run({.replyTime = Seconds(1)});
  return exchange.trigger.isZero() ? exchange.reply.result() : Byte{100};
}

}  // namespace

Byte GSMtext(const Mailbox& mailbox, std::string_view readOrWrite, std::string_view serieNr, Byte number,
             Bytes& data) {
  if (readOrWrite == "R")
    return read(mailbox, {.number = number, .direction = readLongRecord, .serieNr = serieNr}, data);
  return write(mailbox, {.number = number, .direction = writeLongRecord, .serieNr = serieNr}, data);
}

}  // namespace velk::modules
