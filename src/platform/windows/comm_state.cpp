#include "platform/windows/comm_state.h"

namespace velk::platform {
namespace {

/// Unused, but the system refuses a state in which the two are the same.
constexpr char xon = 0x11;
constexpr char xoff = 0x13;

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

}  // namespace

void apply(const SerialSettings& settings, DCB& state) {
  state.DCBlength = sizeof state;
  state.BaudRate = static_cast<DWORD>(settings.baud);
  state.ByteSize = static_cast<BYTE>(settings.dataBits);
  state.Parity = parityCode(settings.parity);
  state.StopBits = stopCode(settings.stopBits);
  state.fBinary = TRUE;
  state.fParity = TRUE;
  state.fDtrControl = DTR_CONTROL_ENABLE;
  state.fRtsControl = RTS_CONTROL_ENABLE;
  state.fOutxCtsFlow = FALSE;
  state.fOutxDsrFlow = FALSE;
  state.fDsrSensitivity = FALSE;
  state.fOutX = FALSE;
  state.fInX = FALSE;
  state.fErrorChar = FALSE;
  state.fNull = FALSE;
  state.fAbortOnError = FALSE;
  state.wReserved = 0;
  state.XonChar = xon;
  state.XoffChar = xoff;
}

}  // namespace velk::platform
