#pragma once

#include <functional>

#include "cli/house/backup_file.h"
#include "cli/shared/interrupts.h"
#include "component/serial.h"

namespace velk::cli {

/// Is told after each line how many of how many are there, and how many of these were before.
using Step = std::function<void(std::size_t done, std::size_t total, std::size_t kept)>;

/// Reads the lines of the wanted things that are not there yet. Bytes that are no configuration, and those
/// behind the end of a list of events, become zero. Throws `Failure` at the first transaction that fails, and
/// after Ctrl-C; the lines read until then stay.
void readMissing(Serial& serial, Lines& lines, const Wanted& wanted, const Step& step);

/// Where lines were read, as far as that can be told.
enum class Origin : Byte {
  here,       ///< from this controller, as it is
  elsewhere,  ///< from another one, or from this one before it was changed
  unknown,    ///< all are zero
};

/// Reads up to 64 of them again, spread over all that are not zero. Throws `Failure`.
Origin originOf(Serial& serial, const Lines& lines);

/// Reads up to 16 bytes from an address on; a read that is lost is repeated. Throws `Failure`.
Bytes readBytes(Serial& serial, Address at, std::size_t count);

/// Writes them. A write that is lost is repeated, but not before what stands there was read. Throws
/// `Failure`.
void writeBytes(Serial& serial, Address at, const Bytes& bytes);

}  // namespace velk::cli
