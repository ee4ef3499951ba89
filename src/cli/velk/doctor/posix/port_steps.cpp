#include "cli/velk/doctor/port_steps.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "cli/velk/connection/posix/device_access.h"
#include "cli/velk/connection/serial_ports.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

Step deviceStep(const std::string& device) {
  std::error_code error;
  const fs::path real = fs::canonical(device, error);
  if (error) {
    return {"device", Verdict::wrong, "there is no " + device,
            "plug the adapter in; \"velk ports\" lists the devices that there are"};
  }
  if (!fs::is_character_file(real, error)) {
    return {"device", Verdict::wrong, device + " is no device", "\"velk ports\" lists them"};
  }
  return {"device", Verdict::fine, device + (real == device ? "" : ", which is " + real.string()), ""};
}

Step adapterStep(const std::string& device) {
  std::error_code error;
  const fs::path real = fs::canonical(device, error);
  const auto ports = findSerialPorts();
  const auto port = std::find_if(ports.begin(), ports.end(),
                                 [&](const SerialPortFacts& facts) { return facts.device == real; });
  if (port == ports.end()) {
    return {"adapter", Verdict::unknown, "the system knows no hardware behind it: a pseudo terminal?", ""};
  }
  std::string text = port->adapter.empty() ? "no USB adapter" : port->adapter;
  if (!port->usb.empty()) text += " (" + port->usb + ")";
  return {"adapter", Verdict::fine, text + ", driver " + port->driver, ""};
}

std::string groupOf(const std::string& device) {
  struct stat state {};
  if (stat(device.c_str(), &state) != 0) return "?";
  const group* const owner = getgrgid(state.st_gid);  // NOLINT(concurrency-mt-unsafe): no other thread asks
  return owner == nullptr ? std::to_string(state.st_gid) : owner->gr_name;
}

Step permissionStep(const std::string& device) {
  if (faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) != 0) {
    return wrongStep("permission", whyForbidden(device));
  }
  return {"permission", Verdict::fine, "this user may open it; its group is " + groupOf(device), ""};
}

Step holderStep(const std::string& device) {
  const std::string who = holdersOf(device);
  if (who.empty()) return {"holder", Verdict::fine, "no program that this user sees has it open", ""};
  return {"holder", Verdict::advice, "it is open in " + who, "end that, or it may take answers away"};
}

}  // namespace

bool addPortSteps(LinkSteps& steps, const std::string& device) {
  return steps.add(deviceStep(device)) && steps.add(adapterStep(device)) &&
         steps.add(permissionStep(device)) && steps.add(holderStep(device));
}

}  // namespace velk::cli
