#pragma once

#include <exception>

namespace velk {

/// The one kind of exception for failures that a host program sees by number: the run-time errors of
/// automation hosts and those of the serial-port and socket controls that such programs know.
class RuntimeError : public std::exception {
 public:
  enum Number : int {
    invalidArgument = 5,
    overflow = 6,
    outOfMemory = 7,
    typeMismatch = 13,
    invalidPropertyValue = 380,
    invalidPortNumber = 8002,
    portAlreadyOpen = 8005,
    deviceNotOpen = 8012,
    portNotOpen = 8018,
    deviceBusy = 8019,
    deviceFailed = 8020,
    badSocketState = 40006,
    socketNotClosed = 40020,
  };

  explicit RuntimeError(Number number) : number_(number) {}

  [[nodiscard]] int number() const { return number_; }

  /// One sentence that a user can act on.
  [[nodiscard]] const char* what() const noexcept override;

 private:
  Number number_;
};

}  // namespace velk
