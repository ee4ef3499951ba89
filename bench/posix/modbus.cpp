#include "posix/modbus.h"

#include <modbus/modbus.h>
#include <netinet/in.h>
#include <pty.h>
#include <termios.h>

#include <array>

namespace velk::bench {
namespace {

constexpr int registers = 8;
constexpr int baud = 115200;

struct Free {
  void operator()(modbus_t* context) const { modbus_free(context); }
  void operator()(modbus_mapping_t* mapping) const { modbus_mapping_free(mapping); }
};

using Context = std::unique_ptr<modbus_t, Free>;

class ModbusClient final : public Client {
 public:
  explicit ModbusClient(Context context) : context_(std::move(context)) {
    if (!context_ || modbus_set_slave(context_.get(), 1) != 0 || modbus_connect(context_.get()) != 0) {
      throw std::runtime_error("libmodbus cannot connect");
    }
  }
  ModbusClient(const ModbusClient&) = delete;
  ModbusClient& operator=(const ModbusClient&) = delete;
  ~ModbusClient() override { modbus_close(context_.get()); }

  void transact() override {
    std::array<std::uint16_t, registers> values{};
    if (modbus_read_registers(context_.get(), 0, registers, values.data()) != registers) {
      throw std::runtime_error("libmodbus: no reply");
    }
  }

 private:
  Context context_;
};

/// Answers until the peer is gone.
void serve(modbus_t* context) {
  const std::unique_ptr<modbus_mapping_t, Free> mapping(modbus_mapping_new(0, 0, registers, 0));
  std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> query{};
  for (;;) {
    const int size = modbus_receive(context, query.data());
    if (size < 0) return;
    if (size > 0) modbus_reply(context, query.data(), size, mapping.get());
  }
}

[[noreturn]] void serveTcp(modbus_t* context, int listener) {
  for (;;) {
    if (modbus_tcp_accept(context, &listener) >= 0) serve(context);
    modbus_close(context);
  }
}

}  // namespace

bool hasModbus() {
  return true;
}

TcpServer startModbusTcpServer() {
  // The library has no way to ask for any free port; this one is free in a moment.
  const int probe = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* name = reinterpret_cast<sockaddr*>(&address);
  const bool found = bind(probe, name, size) == 0 && getsockname(probe, name, &size) == 0;
  close(probe);
  const std::uint16_t port = ntohs(address.sin_port);
  modbus_t* const context = modbus_new_tcp("127.0.0.1", port);
  const int listener = found && context != nullptr ? modbus_tcp_listen(context, 1) : -1;
  if (listener < 0) throw std::runtime_error("libmodbus cannot listen");
  TcpServer server{.port = port, .process = Child([=] { serveTcp(context, listener); })};
  close(listener);
  modbus_free(context);
  return server;
}

std::unique_ptr<Client> modbusTcpClient(std::uint16_t port) {
  return std::make_unique<ModbusClient>(Context(modbus_new_tcp("127.0.0.1", port)));
}

LineServer startModbusLineServer() {
  int nearEnd = -1;
  int farEnd = -1;
  termios raw{};
  cfmakeraw(&raw);
  std::array<char, 128> device{};
  if (openpty(&farEnd, &nearEnd, device.data(), &raw, nullptr) != 0) {
    throw std::runtime_error("no pseudo terminal");
  }
  LineServer server{.device = device.data(), .process = Child([=] {
                                               modbus_t* const context =
                                                   modbus_new_rtu("far end", baud, 'N', 8, 1);
                                               modbus_set_slave(context, 1);
                                               modbus_set_socket(context, farEnd);
                                               serve(context);
                                             })};
  close(nearEnd);
  close(farEnd);
  return server;
}

std::unique_ptr<Client> modbusLineClient(const std::string& device) {
  return std::make_unique<ModbusClient>(Context(modbus_new_rtu(device.c_str(), baud, 'N', 8, 1)));
}

}  // namespace velk::bench
