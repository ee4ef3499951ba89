#include "cli/velk/connection/serial_ports.h"

// The socket header has to come before windows.h.
#include <winsock2.h>
// windows.h has to come before setupapi.h, and initguid.h before what names devices.
#include <windows.h>
// clang-format off
#include <initguid.h>
#include <devguid.h>
#include <setupapi.h>
// clang-format on

#include <algorithm>
#include <array>

#include "cli/shared/windows/wide.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

constexpr DWORD longestText = 512;  // characters
using Text = std::array<wchar_t, longestText>;

/// The text in a buffer that a call has filled with bytes, which need not end with a zero.
std::string textIn(const Text& buffer, DWORD bytes) {
  std::wstring_view text(buffer.data(), std::min<std::size_t>(bytes / sizeof(wchar_t), buffer.size()));
  return utf8Of(text.substr(0, text.find(L'\0')));
}

/// The names of all open-able ports, which drivers of every kind enter there.
std::vector<SerialPortFacts> registeredPorts() {
  std::vector<SerialPortFacts> ports;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE, &key) !=
      ERROR_SUCCESS) {
    return ports;  // the key is made with the first port
  }
  LSTATUS result = ERROR_SUCCESS;
  for (DWORD i = 0; result == ERROR_SUCCESS || result == ERROR_MORE_DATA; ++i) {
    Text name{};
    Text value{};
    DWORD nameLength = longestText;  // characters, with the zero
    DWORD size = sizeof value;       // bytes
    DWORD type = 0;
    result = RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type,
                           reinterpret_cast<BYTE*>(value.data()), &size);
    if (result == ERROR_SUCCESS && type == REG_SZ) ports.push_back({.device = textIn(value, size)});
  }
  RegCloseKey(key);
  return ports;
}

/// What a device's own key tells: the name of its port ("COM3") and, of adapters whose driver holds back what
/// has come, for how many milliseconds.
struct PortSettings {
  std::string name;
  std::optional<int> latency;
};

PortSettings settingsOf(HDEVINFO devices, SP_DEVINFO_DATA& device) {
  PortSettings settings;
  HKEY const key = SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
  if (key == INVALID_HANDLE_VALUE) return settings;
  Text name{};
  DWORD size = sizeof name;
  DWORD type = 0;
  LSTATUS result =
      RegQueryValueExW(key, L"PortName", nullptr, &type, reinterpret_cast<BYTE*>(name.data()), &size);
  if (result == ERROR_SUCCESS && type == REG_SZ) settings.name = textIn(name, size);
  constexpr DWORD longest = 255;
  DWORD latency = 0;
  size = sizeof latency;
  result = RegQueryValueExW(key, L"LatencyTimer", nullptr, &type, reinterpret_cast<BYTE*>(&latency), &size);
  if (result == ERROR_SUCCESS && type == REG_DWORD && latency <= longest) {
    settings.latency = static_cast<int>(latency);
  }
  RegCloseKey(key);
  return settings;
}

std::string propertyOf(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property) {
  Text value{};
  DWORD size = 0;
  if (SetupDiGetDeviceRegistryPropertyW(devices, &device, property, nullptr,
                                        reinterpret_cast<BYTE*>(value.data()), sizeof value, &size) == 0) {
    return {};
  }
  return textIn(value, size);
}

/// "0403:6001" from "USB\VID_0403&PID_6001..." or "FTDIBUS\VID_0403+PID_6001+...".
std::string usbOf(const std::string& hardware) {
  constexpr std::size_t digits = 4;
  constexpr std::string_view mark = "VID_";
  const auto vendor = hardware.find(mark);
  const auto product = hardware.find("PID_");
  if (vendor == std::string::npos || product == std::string::npos) return {};
  std::string text =
      hardware.substr(vendor + mark.size(), digits) + ":" + hardware.substr(product + mark.size(), digits);
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

void describeAll(std::vector<SerialPortFacts>& ports) {
  HDEVINFO const devices = SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
  if (devices == INVALID_HANDLE_VALUE) return;
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device) != 0; ++i) {
    const PortSettings settings = settingsOf(devices, device);
    const auto port = std::find_if(ports.begin(), ports.end(), [&](const SerialPortFacts& facts) {
      return facts.device == settings.name;
    });
    if (port == ports.end()) continue;  // a printer port, most often
    port->adapter = propertyOf(devices, device, SPDRP_FRIENDLYNAME);
    port->usb = usbOf(propertyOf(devices, device, SPDRP_HARDWAREID));
    port->latency = settings.latency;
    port->driver = propertyOf(devices, device, SPDRP_SERVICE);
  }
  SetupDiDestroyDeviceInfoList(devices);
}

}  // namespace

std::vector<SerialPortFacts> findSerialPorts() {
  std::vector<SerialPortFacts> ports = registeredPorts();
  describeAll(ports);
  const auto numberOf = [](const SerialPortFacts& facts) {
    return wholeNumber<unsigned>(
               std::string_view(facts.device).substr(std::min<std::size_t>(3, facts.device.size())))
        .value_or(0);
  };
  std::sort(ports.begin(), ports.end(),
            [&](const SerialPortFacts& a, const SerialPortFacts& b) { return numberOf(a) < numberOf(b); });
  return ports;
}

}  // namespace velk::cli
