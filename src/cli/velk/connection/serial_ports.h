#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velk::cli {

/// A serial port of this system; what is not known is empty.
struct SerialPortFacts {
  std::string device;   ///< as `--serial` takes it
  std::string adapter;  ///< what it calls itself: "FTDI FT232R USB UART"
  std::string usb;      ///< vendor and product as "0403:6001", of a USB adapter
  std::string serial;   ///< its serial number
  std::string driver;
  std::optional<int> latency;  ///< on Windows, where the driver has such a setting: for how many milliseconds
                               ///< at most the adapter holds back what has come
  std::string stableName;      ///< of a device that keeps this name wherever it is plugged in
};

/// All serial ports behind which the system knows hardware, in the order of their names.
std::vector<SerialPortFacts> findSerialPorts();

}  // namespace velk::cli
