#include "modules/gsm_text.h"

#include "values/result.h"

namespace velk::modules {
namespace {

using link::Stop;

constexpr int blocks = 4;
constexpr int attempts = 3;

/// The blocks of a text. A bad status of the first ends the method, one of the others only the attempt.
Byte readBlocks(const Mailbox& mailbox, Bytes& data) {
  Bytes text = mailbox.getLong(0);
  try {
    for (int i = 1; i < blocks; ++i) text += mailbox.getLong(static_cast<Byte>(i * pieceSize));
  } catch (const Stop& stop) {
    return stop.result;
  }
  data = text;
  return 0;
}

/// One attempt; true when it brought the text.
bool readOnce(const Mailbox& mailbox, Bytes& data, Byte& result) {
  const Exchange exchange = mailbox.run(Purpose::text);
  const Polled& trigger = exchange.trigger;
  if (!trigger.isZero()) {
    // The byte as it was read, or the status when there is none: 0 too, behind a bad status or without a
    // byte. Not to be mended into a code of its own: hosts know the results of this method so, and tell a
    // text that came from one that did not by their data, which stay as they were.
    result = trigger.value.value_or(trigger.status);
    return false;
  }
  result = resultOf(exchange.reply);
  if (result == 0) result = readBlocks(mailbox, data);
  return result == 0;
}

void read(const Mailbox& mailbox, const RequestHeader& header, Bytes& data, Byte& result) {
  // Only the trigger is repeated: the header stays, but for the reply code over its marker.
  mailbox.address(header);
  for (int i = 0; i < attempts; ++i) {
    if (readOnce(mailbox, data, result)) return;
  }
}

void write(const Mailbox& mailbox, const RequestHeader& header, std::string_view data, Byte& result) {
  mailbox.putLong(data, Mailbox::LastBlock::cut);
  mailbox.address(header);
  const Exchange exchange = mailbox.run(Purpose::text);
  result = exchange.trigger.isZero() ? exchange.reply.result() : Byte{otherFailure};
}

}  // namespace

void GSMtext(const Mailbox& mailbox, std::string_view readOrWrite, std::string_view serialNumber, Byte number,
             Bytes& data, Byte& result) {
  result = nothingDone;
  const bool reads = readOrWrite == "R";
  const RequestHeader header{
      .number = number, .direction = reads ? readLongRecord : writeLongRecord, .serialNumber = serialNumber};
  if (reads) {
    read(mailbox, header, data, result);
  } else {
    write(mailbox, header, data, result);
  }
}

}  // namespace velk::modules
