#include "cli/velk/connection/port_failure.h"

#include <system_error>

#include "cli/shared/windows/wide.h"
#include "platform/windows/handle.h"

namespace velk::cli {
namespace {

std::string whyRefused(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "there is no such port; \"velk ports\" lists those that there are";
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return "another program has it open";
    case ERROR_SEM_TIMEOUT:
    case ERROR_GEN_FAILURE:
    case ERROR_DEVICE_NOT_CONNECTED:
      return "no hardware answers behind it; is the adapter plugged in, or the Bluetooth device near?";
    default:
      return std::system_category().message(static_cast<int>(error));
  }
}

}  // namespace

std::string whyNoPort(const std::string& device, int baud) {
  // Without the prefix the names from COM10 on are no devices.
  const std::wstring path = LR"(\\.\)" + wideOf(device);
  const platform::Handle port = platform::owned(
      CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!port) return whyRefused(GetLastError());
  DCB state{};
  state.DCBlength = sizeof state;
  if (GetCommState(port.get(), &state) == 0) return "it is no serial port; \"velk ports\" lists them";
  return "it does not take " + std::to_string(baud) + " bit/s, 8 bits of data, no parity";
}

}  // namespace velk::cli
