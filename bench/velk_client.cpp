#include "velk_client.h"

#include <stdexcept>

namespace velk::bench {

VelkClient::VelkClient(std::uint16_t tcpPort) {
  if (serial_.OpenTCP("127.0.0.1", static_cast<std::int16_t>(tcpPort)) != 0) {
    throw std::runtime_error("OpenTCP failed");
  }
}

VelkClient::VelkClient(const std::string& device, bool fastMode) {
  platform::mapPort(1, device);
  if (serial_.OpenCom(1, 9600, fastMode) != 0) throw std::runtime_error("OpenCom failed");
  serial_.FlgBreak = false;
}

VelkClient::~VelkClient() {
  if (serial_.TCP) {
    serial_.CloseTCP();
  } else {
    serial_.CloseCom();
  }
}

void VelkClient::transact() {
  if (serial_.ReadCom(16, 1, 0, "V").size() != 17) throw std::runtime_error("ReadCom failed");
}

}  // namespace velk::bench
