// Usage: velk_bench.exe tcp PORT     a read against the bare Winsock client
//        velk_bench.exe calls        calls through the dispatch interface of VelkCom.dll beside this program
//        velk_bench.exe wait PORT    says "waiting", waits three times two seconds for a reply that never
//                                    comes, says "waited" and stays for a while
#include <windows.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include "frames.h"
#include "velk_client.h"
#include "windows/bare_client.h"
#include "windows/calls.h"

namespace velk::bench {
namespace {

constexpr Length tcpLength{.rounds = 60, .turn = 50};

constexpr int waits = 3;

/// How long somebody has to look at the process before and after the waits.
constexpr DWORD lookTime = 1000;  // ms

void measureTcp(std::uint16_t port) {
  VelkClient velk(port);
  BareWinsockClient bare(port);
  Figures figures;
  race(figures, "wine", {{"velk", velk}, {"bare", bare}}, tcpLength);
  print(figures);
}

void wait(std::uint16_t port) {
  VelkClient velk(port);
  velk.transact();
  std::cout << "waiting" << std::endl;
  Sleep(lookTime);
  for (int i = 0; i < waits; ++i) velk.serial().ReadCom(16, byteValue(silentPage), 0, "V");
  Sleep(lookTime);
  std::cout << "waited" << std::endl;
  Sleep(lookTime);
}

void run(const std::string& section, int port) {
  if (section == "tcp") return measureTcp(static_cast<std::uint16_t>(port));
  if (section == "wait") return wait(static_cast<std::uint16_t>(port));
  if (section != "calls") throw std::runtime_error("tcp PORT, calls or wait PORT");
  Figures figures;
  measureCalls(figures);
  print(figures);
}

}  // namespace
}  // namespace velk::bench

int main(int argc, char** argv) {
  try {
    velk::bench::run(argc > 1 ? argv[1] : "", argc > 2 ? std::atoi(argv[2]) : 0);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "velk_bench: " << error.what() << '\n';
    return 1;
  }
}
