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
  // Neither a trigger byte of 0 behind a bad status nor a good status without a byte may pass for success.
  if (trigger.present && trigger.value != 0) return trigger.value;
  if (!trigger.isZero()) return trigger.status != 0 ? trigger.status : Byte{100};
  const Byte result = resultOf(exchange.reply);
  return result != 0 ? result : readBlocks(mailbox, data);
}

void read(const Mailbox& mailbox, const Header& header, Bytes& data, Byte& result) {
  // Only the trigger is repeated: the header stays, but for the reply code over its marker.
  mailbox.address(header, false);
  for (int i = 0; i < attempts && result != 0; ++i) result = readOnce(mailbox, data);
}

void write(const Mailbox& mailbox, const Header& header, std::string_view data, Byte& result) {
  mailbox.putLong(data, Mailbox::LastBlock::cut);
  mailbox.address(header, false);
  const Exchange exchange = mailbox.run({.replyTime = Seconds(1)});
  result = exchange.trigger.isZero() ? exchange.reply.result() : Byte{100};
}

}  // namespace

void GSMtext(const Mailbox& mailbox, std::string_view readOrWrite, std::string_view serieNr, Byte number,
             Bytes& data, Byte& result) {
  result = 99;
  const bool reads = readOrWrite == "R";
  const Header header{
      .number = number, .direction = reads ? readLongRecord : writeLongRecord, .serieNr = serieNr};
  if (reads) {
    read(mailbox, header, data, result);
  } else {
    write(mailbox, header, data, result);
  }
}

}  // namespace velk::modules
