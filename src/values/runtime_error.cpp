#include "values/runtime_error.h"

namespace velk {

const char* RuntimeError::what() const noexcept {
  switch (number_) {  // the compiler tells which number has no sentence
    case invalidArgument:
      return "A value or a reply does not have the form that the call needs.";
    case overflow:
      return "A number does not fit the range of its type.";
    case outOfMemory:
      return "The system has no memory or other resource left for the call.";
    case typeMismatch:
      return "A text cannot be read as a number.";
    case invalidPropertyValue:
      return "The port cannot be set to these settings.";
    case invalidPortNumber:
      return "The serial port does not exist.";
    case portAlreadyOpen:
      return "The serial port is already open, here or in another program.";
    case deviceNotOpen:
      return "The serial port to close is not open.";
    case portNotOpen:
      return "The serial port is not open: call OpenCom first.";
    case deviceBusy:
      return "The serial port does not take the data.";
    case deviceFailed:
      return "The serial port failed; it may have been unplugged.";
    case badSocketState:
      return "The TCP link is not connected: call OpenTCP first.";
    case socketNotClosed:
      return "The TCP link is still in use: call CloseTCP first.";
  }
  return "Run-time error.";
}

}  // namespace velk
