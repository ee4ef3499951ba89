#pragma once

#include <string_view>

#include "link/memory.h"
#include "link/wait.h"
#include "values/bytes.h"

/// Requests to modules travel through a mailbox in the controller's memory: a header is written, a trigger
/// byte is set, the controller passes the request on, clears the trigger, and a reply code lies where the
/// header began.
namespace velk::modules {

using link::Seconds;

constexpr Byte pieceSize = 16;

/// The request header, six bytes. The reply code overwrites its first byte; modules take a repeated trigger
/// without the marker.
struct RequestHeader {
  Byte number;     ///< which piece, sample or text
  Byte direction;  ///< length and direction
  std::string_view serialNumber;

  [[nodiscard]] Bytes bytes() const;
};

/// What the last reading of a polled byte gave.
struct Polled {
  Byte status;
  bool present;  ///< the reply had a second byte
  Byte value;

  [[nodiscard]] bool isZero() const { return status == 0 && present && value == 0; }

  /// The status, or with a good one the byte itself; run-time error 5 when there is none.
  [[nodiscard]] Byte result() const;
};

/// How long one kind of request takes. A time of 0 leaves the step out.
struct Timing {
  Seconds beforeTrigger{0};
  Seconds afterTrigger{0.1};
  Seconds triggerTime{0.5};  ///< how long the trigger may stay set
  Seconds replyTime{0.5};    ///< how long the reply code may stay other than 0
};

/// How a request ended.
struct Exchange {
  Polled trigger{};
  Polled reply{};  ///< not polled while the trigger is set
};

/// The result byte for a final reply code: 0, the module's own 127, 128 and 255, else 100.
Byte resultOf(const Polled& reply);

/// The mailbox, and the buffer beside it that carries long records. Writes that fail end the method with
/// their status; polls go on through bad ones.
class Mailbox {
 public:
  Mailbox(const link::Memory& memory, platform::Host& host) : memory_(memory), host_(host) {}

  /// Writes a header; with `padded`, ten blanks behind it.
  void address(const RequestHeader& header, bool padded) const;

  /// Writes the data of a piece.
  void put(std::string_view piece) const;

  /// Sets the trigger and waits for the module.
  [[nodiscard]] Exchange run(const Timing& timing) const;

  /// Reads reply data, `offset` bytes into the reply.
  [[nodiscard]] Bytes get(Byte count, Byte offset = 0) const;

  /// Waits while the host's messages are dispatched.
  void pause(Seconds time) const;

  /// Writes the long-record buffer in blocks of 16 bytes; the last is padded with zero bytes, or sent short.
  enum class LastBlock : std::uint8_t { padded, cut };
  void putLong(std::string_view record, LastBlock lastBlock) const;

  /// Reads one block of the long-record buffer.
  [[nodiscard]] Bytes getLong(Byte position) const;

 private:
  [[nodiscard]] Polled poll(link::Address at, Seconds longest) const;

  const link::Memory& memory_;
  platform::Host& host_;
};

}  // namespace velk::modules
