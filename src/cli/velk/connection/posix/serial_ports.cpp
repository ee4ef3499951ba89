#include "cli/velk/connection/posix/serial_ports.h"

#include <algorithm>
#include <fstream>
#include <tuple>

#include "values/digits.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

std::string lineOf(const fs::path& file) {
  std::string line;
  std::getline(std::ifstream(file), line);
  return line;
}

/// The USB device that a device of the system belongs to: the nearest folder above it that says so.
fs::path usbDeviceAbove(fs::path device) {
  std::error_code error;
  while (device.has_relative_path() && !fs::exists(device / "idVendor", error)) device = device.parent_path();
  return device.has_relative_path() ? device : fs::path();
}

std::string joined(const std::string& a, const std::string& b, const char* between) {
  return a + (a.empty() || b.empty() ? "" : between) + b;
}

void describeUsb(SerialPortFacts& facts, const fs::path& usb) {
  facts.adapter = joined(lineOf(usb / "manufacturer"), lineOf(usb / "product"), " ");
  facts.usb = joined(lineOf(usb / "idVendor"), lineOf(usb / "idProduct"), ":");
  facts.serial = lineOf(usb / "serial");
}

/// The drivers of plain ports make more of them than there are; those without hardware have type 0.
bool hasHardware(const fs::path& tty) {
  return lineOf(tty / "type") != "0";
}

std::string stableNameOf(const fs::path& root, const std::string& name) {
  std::error_code error;
  const fs::path folder = root / "dev/serial/by-id";
  for (fs::directory_iterator link(folder, error), end; !error && link != end; link.increment(error)) {
    std::error_code unreadable;
    if (fs::read_symlink(link->path(), unreadable).filename() == name) {
      return "/dev/serial/by-id/" + link->path().filename().string();
    }
  }
  return {};
}

SerialPortFacts factsOf(const fs::path& root, const fs::path& tty) {
  const std::string name = tty.filename().string();
  SerialPortFacts facts;
  facts.device = "/dev/" + name;
  std::error_code error;
  facts.driver = fs::canonical(tty / "device/driver", error).filename().string();
  if (const fs::path usb = usbDeviceAbove(fs::canonical(tty / "device", error)); !usb.empty()) {
    describeUsb(facts, usb);
  }
  facts.stableName = stableNameOf(root, name);
  return facts;
}

/// ttyUSB10 comes behind ttyUSB9.
auto orderOf(const SerialPortFacts& facts) {
  const auto digits = facts.device.find_last_not_of("0123456789") + 1;
  const auto number = wholeNumber<unsigned>(std::string_view(facts.device).substr(digits));
  return std::tuple(facts.device.substr(0, digits), number.value_or(0));
}

}  // namespace

std::vector<SerialPortFacts> serialPortsBelow(const fs::path& root) {
  std::vector<SerialPortFacts> ports;
  std::error_code error;
  for (fs::directory_iterator tty(root / "sys/class/tty", error), end; !error && tty != end;
       tty.increment(error)) {
    std::error_code none;
    // Consoles and pseudo terminals belong to no device.
    if (fs::exists(tty->path() / "device", none) && hasHardware(tty->path())) {
      ports.push_back(factsOf(root, tty->path()));
    }
  }
  std::sort(ports.begin(), ports.end(),
            [](const SerialPortFacts& a, const SerialPortFacts& b) { return orderOf(a) < orderOf(b); });
  return ports;
}

std::vector<SerialPortFacts> findSerialPorts() {
  return serialPortsBelow("/");
}

}  // namespace velk::cli
