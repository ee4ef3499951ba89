#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "posix/servers.h"
#include "race.h"

/// libmodbus reading 8 registers, which are 16 bytes, from its own server. All of these return nothing or
/// throw std::runtime_error where the build has no libmodbus.
namespace velk::bench {

bool hasModbus();

TcpServer startModbusTcpServer();
std::unique_ptr<Client> modbusTcpClient(std::uint16_t port);

LineServer startModbusLineServer();
std::unique_ptr<Client> modbusLineClient(const std::string& device);

}  // namespace velk::bench
