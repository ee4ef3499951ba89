#include "posix/bare_clients.h"
#include "posix/modbus.h"
#include "posix/sections.h"
#include "posix/servers.h"
#include "velk_client.h"

namespace velk::bench {
namespace {

constexpr Length tcpLength{.rounds = 200, .turn = 50};
constexpr Length fastLength{.rounds = 120, .turn = 40};
constexpr Length echoLength{.rounds = 80, .turn = 20};

// Both clients share one line, since lines differ: the kernel's worker that carries their bytes stays for
// long on the core where it is. The bare client opens it first, because this library then keeps others out.

void measureFast(Figures& figures) {
  const LineServer server = startFastServer(Pace::full);
  BareFastClient bare(server.device);
  VelkClient velk(server.device, true);
  std::vector<Contestant> contestants{{"velk", velk}, {"bare", bare}};
  if (!hasModbus()) return race(figures, "fast", contestants, fastLength);
  const LineServer modbusServer = startModbusLineServer();
  const auto modbus = modbusLineClient(modbusServer.device);
  contestants.push_back({"modbus", *modbus});
  race(figures, "fast", contestants, fastLength);
}

void measureEcho(Figures& figures) {
  const LineServer server = startEchoServer(Pace::full);
  BareEchoClient bare(server.device);
  VelkClient velk(server.device, false);
  race(figures, "echo", {{"velk", velk}, {"bare", bare}}, echoLength);
}

double typicalRead(Client& client) {
  constexpr int reads = 25;
  Samples samples;
  for (int i = 0; i < reads; ++i) {
    const auto start = Clock::now();
    client.transact();
    samples.push_back(microsecondsSince(start));
  }
  return percentile(samples, 0.5);
}

}  // namespace

void measureTcp(Figures& figures) {
  const TcpServer server = startTcpServer();
  VelkClient velk(server.port);
  BareTcpClient bare(server.port);
  std::vector<Contestant> contestants{{"velk", velk}, {"bare", bare}};
  if (!hasModbus()) return race(figures, "tcp", contestants, tcpLength);
  const TcpServer modbusServer = startModbusTcpServer();
  const auto modbus = modbusTcpClient(modbusServer.port);
  contestants.push_back({"modbus", *modbus});
  race(figures, "tcp", contestants, tcpLength);
}

void measureLines(Figures& figures) {
  measureFast(figures);
  measureEcho(figures);
}

void measurePacedLines(Figures& figures) {
  {
    const LineServer fast = startFastServer(Pace::baud9600);
    VelkClient velk(fast.device, true);
    figures["paced.fast"] = typicalRead(velk);
  }
  const LineServer echo = startEchoServer(Pace::baud9600);
  VelkClient velk(echo.device, false);
  figures["paced.echo"] = typicalRead(velk);
}

}  // namespace velk::bench
