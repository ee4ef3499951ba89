#include "platform/windows/port.h"

#include <algorithm>

#include "platform/devices.h"
#include "platform/windows/comm_state.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a port may refuse to take anything.
constexpr DWORD writePatience = 1000;  // ms

/// How long a driver may take to hand over bytes that it says it has.
constexpr DWORD handOverPatience = 100;  // ms

/// One call of `read` gives about this much of a flood.
constexpr std::size_t mostRead = 65536;

/// Long data go out in pieces: a piece that is taken is progress.
constexpr std::size_t pieceWritten = 64;

std::string devicePath(int number) {
  const auto mapped = mappedPort(number);
  return mapped ? *mapped : R"(\\.\COM)" + std::to_string(number);
}

Handle openDevice(const std::string& path) {
  Handle port = owned(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED, nullptr));
  if (port) return port;
  const DWORD error = GetLastError();
  const bool taken = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
  throw RuntimeError(taken ? RuntimeError::portAlreadyOpen : RuntimeError::invalidPortNumber);
}

/// False when the port is gone, or is no serial port.
bool getState(HANDLE port, DCB& state) {
  state = DCB{};
  state.DCBlength = sizeof state;
  return GetCommState(port, &state) != 0;
}

void configure(HANDLE port, const SerialSettings& settings) {
  DCB state;
  if (!getState(port, state)) throw RuntimeError(RuntimeError::invalidPortNumber);
  apply(settings, state);
  // No time-outs: a read ends with its last byte and never empty-handed.
  COMMTIMEOUTS none{};
  if (SetCommState(port, &state) == 0 || SetCommTimeouts(port, &none) == 0) {
    throw RuntimeError(RuntimeError::invalidPropertyValue);
  }
}

}  // namespace

WindowsSerialPort::~WindowsSerialPort() {
  if (port_) release();
}

void WindowsSerialPort::open(int number, const SerialSettings& settings) {
  if (port_) throw RuntimeError(RuntimeError::portAlreadyOpen);
  if (number < 1) throw RuntimeError(RuntimeError::invalidPortNumber);
  Handle port = openDevice(devicePath(number));
  configure(port.get(), settings);
  constexpr int mostBitsOfByte = 12;
  byteTime_ = static_cast<DWORD>(mostBitsOfByte * 1000 / settings.baud + 1);
  port_ = std::move(port);
  deviceOpened();
  reading_.read(port_.get(), 1);
}

void WindowsSerialPort::close() {
  if (!port_) throw RuntimeError(RuntimeError::deviceNotOpen);
  release();
}

/// The running read asks for one byte, so that it ends as soon as anything comes; a longer one would wait for
/// all of its bytes or for a time-out. What else has come by then is fetched by its number.
std::string_view WindowsSerialPort::read() {
  requireOpen();
  received_.clear();
  while (received_.size() < mostRead && reading_.state() != OverlappedIo::State::running) {
    if (reading_.state() != OverlappedIo::State::done || reading_.bytes().empty()) {
      throw RuntimeError(RuntimeError::deviceFailed);
    }
    received_ += reading_.bytes();
    const std::size_t rest = std::min(waiting(), mostRead);
    reading_.read(port_.get(), std::max<std::size_t>(rest, 1));
    if (rest > 0) reading_.wait(handOverPatience);
  }
  return received_;
}

/// Returns with the last byte on its way out of the driver.
void WindowsSerialPort::write(std::string_view bytes) {
  requireOpen();
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, pieceWritten);
    writePiece(piece);
    bytes.remove_prefix(piece.size());
  }
}

void WindowsSerialPort::writePiece(std::string_view piece) {
  writing_.write(port_.get(), piece);
  if (!writing_.wait(writePatience + static_cast<DWORD>(piece.size()) * byteTime_)) {
    writing_.cancel();
    throw RuntimeError(RuntimeError::deviceBusy);
  }
  const bool written =
      writing_.state() == OverlappedIo::State::done && writing_.bytes().size() == piece.size();
  if (!written) throw RuntimeError(RuntimeError::deviceFailed);
}

void WindowsSerialPort::setBreak(bool on) {
  requireOpen();
  if (EscapeCommFunction(port_.get(), on ? SETBREAK : CLRBREAK) != 0) return;
  // The codes for a driver that knows no break are many, and some of them a device that is gone gives, too.
  // One that is there knows its settings.
  DCB state;
  if (!getState(port_.get(), state)) throw RuntimeError(RuntimeError::deviceFailed);
}

void WindowsSerialPort::requireOpen() const {
  if (!port_) throw RuntimeError(RuntimeError::portNotOpen);
}

void WindowsSerialPort::release() {
  reading_.cancel();
  writing_.cancel();
  port_.reset();
  deviceClosed();
}

/// How many received bytes the driver holds.
std::size_t WindowsSerialPort::waiting() const {
  DWORD errors = 0;
  COMSTAT status{};
  return ClearCommError(port_.get(), &errors, &status) != 0 ? status.cbInQue : 0;
}

}  // namespace velk::platform
