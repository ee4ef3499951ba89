#include "values/runtime_error.h"

#include <algorithm>
#include <array>

namespace velk {
namespace {

struct Sentence {
  RuntimeError::Number number;
  const char* text;
};

constexpr std::array sentences{
    Sentence{RuntimeError::invalidArgument, "A value or a reply does not have the form that the call needs."},
    Sentence{RuntimeError::overflow, "A number does not fit the range of its type."},
    Sentence{RuntimeError::outOfMemory, "The system has no memory or other resource left for the call."},
    Sentence{RuntimeError::typeMismatch, "A text cannot be read as a number."},
    Sentence{RuntimeError::invalidPropertyValue, "The port cannot be set to these settings."},
    Sentence{RuntimeError::invalidPortNumber, "The serial port does not exist."},
    Sentence{RuntimeError::portAlreadyOpen, "The serial port is already open, here or in another program."},
    Sentence{RuntimeError::deviceNotOpen, "The serial port to close is not open."},
    Sentence{RuntimeError::portNotOpen, "The serial port is not open: call OpenCom first."},
    Sentence{RuntimeError::deviceBusy, "The serial port does not take the data."},
    Sentence{RuntimeError::deviceFailed, "The serial port failed; it may have been unplugged."},
    Sentence{RuntimeError::badSocketState, "The TCP link is not connected: call OpenTCP first."},
    Sentence{RuntimeError::socketNotClosed, "The TCP link is still in use: call CloseTCP first."},
};

}  // namespace

const char* RuntimeError::what() const noexcept {
  const auto* const found = std::find_if(sentences.begin(), sentences.end(),
                                         [this](const Sentence& s) { return s.number == number_; });
  return found == sentences.end() ? "Run-time error." : found->text;
}

}  // namespace velk
