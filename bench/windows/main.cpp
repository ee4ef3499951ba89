// Usage: velk_bench.exe tcp PORT                   a read against the bare Winsock clients
//        velk_bench.exe count CLIENT PORT COUNT    COUNT reads by velk, bare or drain, for tools that count
//                                                  what they cost
//        velk_bench.exe calls                      calls through the dispatch interface of VelkCom.dll beside
//                                                  this program
//        velk_bench.exe wait PORT                  says "waiting", waits three times two seconds for a reply
//                                                  that never comes, says "waited" and stays for a while
#include <windows.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

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
  DrainingWinsockClient drain(port);
  Figures figures;
  race(figures, "wine", {{"velk", velk}, {"bare", bare}, {"drain", drain}}, tcpLength);
  print(figures);
}

void count(const std::string& name, std::uint16_t port, int transactions) {
  std::unique_ptr<Client> client;
  if (name == "velk") client = std::make_unique<VelkClient>(port);
  if (name == "bare") client = std::make_unique<BareWinsockClient>(port);
  if (name == "drain") client = std::make_unique<DrainingWinsockClient>(port);
  if (client == nullptr) throw std::runtime_error("velk, bare or drain");
  for (int i = 0; i < transactions; ++i) client->transact();
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

std::uint16_t portOf(const std::string& word) {
  return static_cast<std::uint16_t>(std::atoi(word.c_str()));
}

void run(const std::vector<std::string>& words) {
  const std::string section = words.empty() ? "" : words[0];
  if (section == "tcp" && words.size() == 2) return measureTcp(portOf(words[1]));
  if (section == "wait" && words.size() == 2) return wait(portOf(words[1]));
  if (section == "count" && words.size() == 4) {
    return count(words[1], portOf(words[2]), std::atoi(words[3].c_str()));
  }
  if (section != "calls") throw std::runtime_error("tcp PORT, count CLIENT PORT COUNT, calls or wait PORT");
  Figures figures;
  measureCalls(figures);
  print(figures);
}

}  // namespace
}  // namespace velk::bench

int main(int argc, char** argv) {
  try {
    velk::bench::run({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "velk_bench: " << error.what() << '\n';
    return 1;
  }
}
