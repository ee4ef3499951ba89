#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>

#include "simulator/store.h"

/// Memory images: the controller's memory as a text that people can read, compare and write by hand.
///
///     velk-memory 1
///     # a comment
///     V  0510 00 05 23 10
///     H+ 000A 54 56
///     end
///
/// The first line names the format and its version. Each further line names a memory ("V" and "H" by
/// direction, "+" for the high bank), an address of four hexadecimal digits and 1 to 16 bytes from there on,
/// in the order of a transfer: upwards in "V", by high address bytes in "H". Bytes that no line names are 0.
/// The last line is "end", so that a file that was cut off is not taken for a whole one.
namespace velk::simulator {

/// Why an image cannot be read or written, as one sentence with its line number.
struct ImageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

Store readImage(std::istream& in);
void writeImage(std::ostream& out, const Store& store);

}  // namespace velk::simulator
