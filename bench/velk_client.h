#pragma once

#include <cstdint>
#include <string>

#include "component/serial.h"
#include "race.h"

namespace velk::bench {

/// This library, reading 16 bytes.
class VelkClient final : public Client {
 public:
  /// Over TCP, from a server on 127.0.0.1.
  explicit VelkClient(std::uint16_t tcpPort);

  /// Over a serial device.
  VelkClient(const std::string& device, bool fastMode);

  VelkClient(const VelkClient&) = delete;
  VelkClient& operator=(const VelkClient&) = delete;
  ~VelkClient() override;

  void transact() override;

  Serial& serial() { return serial_; }

 private:
  Serial serial_;
};

}  // namespace velk::bench
