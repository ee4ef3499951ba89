#include "modules/mailbox.h"

#include <algorithm>
#include <array>

#include "values/numbers.h"
#include "values/result.h"
#include "values/runtime_error.h"

namespace velk::modules {
namespace {

using link::Address;
using namespace std::chrono_literals;

constexpr Address triggerByte{.page = 0, .offset = 0x00};
constexpr Address headerPlace{.page = 0, .offset = 0x0A};
constexpr Address dataPlace{.page = 0, .offset = 0x10};
constexpr Address longRecordBuffer{.area = link::Area::highBlock, .page = 26, .offset = 0};
constexpr Byte requestMarker = 222;
constexpr std::size_t paddedHeader = 16;

constexpr auto notPolled = std::nullopt;

struct Timing {
  Seconds beforeTrigger;
  Seconds behindTrigger;
  std::optional<Seconds> trigger;  ///< how long it may stay set
  std::optional<Seconds> reply;    ///< how long its code may stay other than 0
  Seconds inTheEnd;
};

// clang-format off
/// How long each `Purpose` waits.
constexpr std::array timings{
    //     pauses around the  trigger    reply      pause
    //     trigger's setting  cleared    comes      in the end
    Timing{100ms, 100ms,      500ms,     500ms,     0ms},    // version
    Timing{0ms,   100ms,      500ms,     500ms,     0ms},    // readRecord
    Timing{0ms,   100ms,      1s,        notPolled, 800ms},  // writeRecord
    Timing{0ms,   100ms,      notPolled, notPolled, 0ms},    // writeOwn
    Timing{0ms,   100ms,      500ms,     1s,        0ms},    // readSample
    Timing{0ms,   100ms,      notPolled, 500ms,     0ms},    // writeSample
    Timing{0ms,   100ms,      500ms,     1s,        0ms},    // text
};
// clang-format on
static_assert(timings.size() == static_cast<std::size_t>(Purpose::text) + 1);

/// The binary value of one pair of digits.
Byte pairValue(std::string_view serialNumber, std::size_t index) {
  return roundTo<Byte>(leadingNumber(slice(serialNumber, index, 2)));
}

}  // namespace

Bytes RequestHeader::bytes() const {
  const Bytes bytes{character(requestMarker),
                    character(number),
                    character(direction),
                    character(pairValue(serialNumber, 0)),
                    character(pairValue(serialNumber, 2)),
                    character(pairValue(serialNumber, 4))};
  return padded ? velk::padded(bytes, paddedHeader) : bytes;
}

Byte Polled::result() const {
  if (status != 0) return status;
  if (!value) throw RuntimeError(RuntimeError::invalidArgument);
  return *value;
}

Byte resultOf(const Polled& reply) {
  constexpr std::array<Byte, 4> codes{success, moduleRefused127, moduleRefused128, moduleRefused255};
  const bool isCode = reply.status == 0 && std::ranges::find(codes, reply.value) != codes.end();
  return isCode ? *reply.value : Byte{otherFailure};
}

void Mailbox::address(const RequestHeader& header) const {
  memory_.write(headerPlace, header.bytes());
}

void Mailbox::put(std::string_view piece) const {
  memory_.write(dataPlace, piece);
}

Exchange Mailbox::run(Purpose purpose) const {
  const Timing& timing = timings.at(static_cast<std::size_t>(purpose));
  Exchange exchange;
  pause(timing.beforeTrigger);
  memory_.write(triggerByte, Bytes(1, character(255)));
  pause(timing.behindTrigger);
  if (timing.trigger) exchange.trigger = poll(triggerByte, *timing.trigger);
  if (timing.reply && exchange.trigger.isZero()) exchange.reply = poll(headerPlace, *timing.reply);
  pause(timing.inTheEnd);
  return exchange;
}

Bytes Mailbox::get(Byte count, Byte offset) const {
  return memory_.read(count, dataPlace.next(offset));
}

void Mailbox::pause(Seconds time) const {
  if (time.count() > 0) link::pause(host_, time, platform::Messages::dispatched);
}

void Mailbox::putLong(std::string_view record, LastBlock lastBlock) const {
  for (std::size_t position = 0; position < record.size(); position += pieceSize) {
    Bytes block(slice(record, position, pieceSize));
    if (lastBlock == LastBlock::padded) block.resize(pieceSize, '\0');
    memory_.write(longRecordBuffer.next(checkedByte(static_cast<long>(position))), block);
  }
}

Bytes Mailbox::getLong(Byte position) const {
  return memory_.read(pieceSize, longRecordBuffer.next(position));
}

/// Reads a byte again and again until it is 0 or the time is up. A reading takes its time on the link, so
/// that there is nothing to wait for in between, unless it fails or is answered at once: then the rest of a
/// short time is waited out, so that a dead link does not keep a core busy.
Polled Mailbox::poll(Address at, Seconds longest) const {
  constexpr std::chrono::milliseconds shortest(1);
  const link::Deadline deadline(host_, longest);
  for (;;) {
    const auto start = host_.steady();
    const Bytes reply = memory_.tryRead(1, at);
    Polled last{.status = byteAt(reply, 0), .value = {}};
    if (reply.size() > 1) last.value = byteAt(reply, 1);
    host_.yield();
    const auto rest = std::min(start + shortest - host_.steady(), deadline.remaining());
    if (last.isZero() || deadline.passed()) return last;
    // Not a pause: the clock that ends one may have no steps as short as this.
    if (rest.count() > 0) host_.block(platform::Source::nothing, rest, platform::Messages::dispatched);
  }
}

}  // namespace velk::modules
