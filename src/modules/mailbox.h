#pragma once

#include <optional>
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

/// The six bytes in front of a request. The reply code overwrites its first byte; modules take a repeated
/// trigger without the marker.
struct RequestHeader {
  Byte number;     ///< which piece, sample or text
  Byte direction;  ///< length and direction
  std::string_view serialNumber;
  bool padded = false;  ///< ten blanks follow

  [[nodiscard]] Bytes bytes() const;
};

/// Directions of requests for a record, or a text, in the long-record buffer.
constexpr Byte readLongRecord = 31;
constexpr Byte writeLongRecord = 159;

/// Added to directions: the module is one that tells reading from writing.
constexpr Byte readFlag = 64;

/// What a request is for, which decides how long each of its steps may take.
enum class Purpose : Byte { version, readRecord, writeRecord, writeOwn, readSample, writeSample, text };

/// What the last reading of a polled byte gave.
struct Polled {
  Byte status = 0;
  std::optional<Byte> value = 0;  ///< none when the reply had no second byte

  [[nodiscard]] bool isZero() const { return status == 0 && value == 0; }

  /// The status, or with a good one the byte itself; run-time error 5 when there is none.
  [[nodiscard]] Byte result() const;
};

/// How a request ended. What is not polled counts as 0; the reply is not while the trigger is set.
struct Exchange {
  Polled trigger;
  Polled reply;
};

/// The result byte for a final reply code: 0, the module's own 127, 128 and 255, else 100.
Byte resultOf(const Polled& reply);

/// The mailbox, and the buffer beside it that carries long records. Writes that fail end the method with
/// their status; polls go on through bad ones.
class Mailbox {
 public:
  Mailbox(const link::Memory& memory, platform::Host& host) : memory_(memory), host_(host) {}

  /// Writes a header.
  void address(const RequestHeader& header) const;

  /// Writes the data of a piece.
  void put(std::string_view piece) const;

  /// Sets the trigger and waits for the module.
  [[nodiscard]] Exchange run(Purpose purpose) const;

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
