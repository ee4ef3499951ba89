#include "posix/modbus.h"

namespace velk::bench {
namespace {

[[noreturn]] void absent() {
  throw std::runtime_error("built without libmodbus");
}

}  // namespace

bool hasModbus() {
  return false;
}

TcpServer startModbusTcpServer() {
  absent();
}

std::unique_ptr<Client> modbusTcpClient(std::uint16_t /*port*/) {
  absent();
}

LineServer startModbusLineServer() {
  absent();
}

std::unique_ptr<Client> modbusLineClient(const std::string& /*device*/) {
  absent();
}

}  // namespace velk::bench
