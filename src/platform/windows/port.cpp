#include "platform/windows/port.h"

#include <algorithm>

#include "platform/devices.h"
#include "values/runtime_error.h"

namespace velk::platform {
namespace {

/// How long a port may refuse to take anything.
constexpr DWORD writePatience = 1000;  // ms

/// How long a driver may take to hand over bytes that it says it has.
constexpr DWORD handOverPatience = 100;  // ms

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

BYTE parityCode(char parity) {
  switch (parity) {
    case 'E':
      return EVENPARITY;
    case 'O':
      return ODDPARITY;
    case 'M':
      return MARKPARITY;
    case 'S':
      return SPACEPARITY;
    default:
      return NOPARITY;
  }
}

BYTE stopCode(double stopBits) {
  if (stopBits == 1) return ONESTOPBIT;
  return stopBits < 2 ? ONE5STOPBITS : TWOSTOPBITS;
}

void configure(HANDLE port, const SerialSettings& settings) {
  DCB dcb{};
  dcb.DCBlength = sizeof dcb;
  if (GetCommState(port, &dcb) == 0) throw RuntimeError(RuntimeError::invalidPortNumber);  // no serial device
  dcb = DCB{};
  dcb.DCBlength = sizeof dcb;
  dcb.BaudRate = static_cast<DWORD>(settings.baud);
  dcb.fBinary = TRUE;
  dcb.fParity = settings.parity != 'N';
  dcb.fDtrControl = DTR_CONTROL_ENABLE;
  dcb.fRtsControl = RTS_CONTROL_ENABLE;
  dcb.ByteSize = static_cast<BYTE>(settings.dataBits);
  dcb.Parity = parityCode(settings.parity);
  dcb.StopBits = stopCode(settings.stopBits);
  if (SetCommState(port, &dcb) == 0) throw RuntimeError(RuntimeError::invalidPropertyValue);
  // No time-outs: a read ends with its last byte and never empty-handed.
  COMMTIMEOUTS none{};
  SetCommTimeouts(port, &none);
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
  while (reading_.state() != Transfer::State::running) {
    if (reading_.state() != Transfer::State::done || reading_.bytes().empty()) {
      throw RuntimeError(RuntimeError::deviceFailed);
    }
    received_ += reading_.bytes();
    const std::size_t rest = waiting();
    reading_.read(port_.get(), std::max<std::size_t>(rest, 1));
    if (rest > 0) reading_.wait(handOverPatience);
  }
  return received_;
}

void WindowsSerialPort::write(std::string_view bytes) {
  requireOpen();
  writing_.write(port_.get(), bytes);
  if (!writing_.wait(writePatience + static_cast<DWORD>(bytes.size()) * byteTime_)) {
    writing_.cancel();
    throw RuntimeError(RuntimeError::deviceBusy);
  }
  const bool written = writing_.state() == Transfer::State::done && writing_.bytes().size() == bytes.size();
  if (!written) throw RuntimeError(RuntimeError::deviceFailed);
}

void WindowsSerialPort::setBreak(bool on) {
  requireOpen();
  if (EscapeCommFunction(port_.get(), on ? SETBREAK : CLRBREAK) == 0) {
    throw RuntimeError(RuntimeError::deviceFailed);
  }
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
