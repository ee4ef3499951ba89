#include "cli/velk/commands/command.h"
#include "cli/velk/connection/serial_ports.h"

namespace velk::cli {
namespace {

struct PortsOptions {
  bool json = false;

  void declare(const CommandLine& line) { line.flag("--json", json, "Print JSON"); }
};

Json jsonOf(const SerialPortFacts& port) {
  const auto known = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
  return {{"device", port.device},        {"adapter", known(port.adapter)},
          {"usb", known(port.usb)},       {"serial", known(port.serial)},
          {"driver", known(port.driver)}, {"stable_name", known(port.stableName)}};
}

int printPorts(const PortsOptions& options) {
  const auto ports = findSerialPorts();
  Json list = Json::array();
  Table table({"Device", "Adapter", "USB", "Serial", "Driver"});
  for (const SerialPortFacts& port : ports) {
    list.push_back(jsonOf(port));
    table.add({port.device, port.adapter, port.usb, port.serial, port.driver});
  }
  printList(options.json, list, table, "there are no serial ports");
  return success;
}

}  // namespace

void addPorts(const CommandLine& velk, Job& job) {
  addCommand<PortsOptions>(
      velk, job, "ports", "List the serial ports and what is known of their adapters",
      "  velk ports\n  velk ports --json\n"
      "\nA controller's link takes the device: velk status --serial DEVICE. JSON tells also the name under\n"
      "which Linux finds an adapter wherever it is plugged in.\n",
      printPorts);
}

}  // namespace velk::cli
