#pragma once

#include <string>

#include "component/serial.h"
#include "link/address.h"

namespace velk::cli {

/// Reads 1 to 16 bytes of the controller's memory; what is lost on the way is asked again (see `Retry`).
/// Throws `Failure` that names `what`.
Bytes readTransfer(Serial& serial, link::Address at, std::size_t count, const std::string& what);

/// The same, named by the page.
Bytes readMemory(Serial& serial, link::Address at, std::size_t count);

/// Writes them, likewise.
void writeTransfer(Serial& serial, link::Address at, const Bytes& bytes, const std::string& what);

}  // namespace velk::cli
