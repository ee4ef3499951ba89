// Usage: velk_bench SECTION...                   measures and prints the figures as JSON
//        velk_bench serve velk|modbus            a server that prints its port and runs until it is killed
//        velk_bench count CLIENT PORT COUNT      COUNT transactions, for tools that count what they cost
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <span>

#include "posix/bare_clients.h"
#include "posix/modbus.h"
#include "posix/sections.h"
#include "posix/servers.h"
#include "velk_client.h"

namespace velk::bench {
namespace {

using Words = std::span<char*>;

const std::map<std::string, void (*)(Figures&)> sections{
    {"tcp", measureTcp},   {"lines", measureLines},     {"paced", measurePacedLines},
    {"wait", measureWait}, {"threads", measureThreads}, {"memory", measureMemory},
    {"page", measurePage},
};

const std::map<std::string, TcpServer (*)()> servers{{"velk", startTcpServer},
                                                     {"modbus", startModbusTcpServer}};

const std::map<std::string, std::function<std::unique_ptr<Client>(std::uint16_t)>> clients{
    {"velk", [](std::uint16_t port) { return std::make_unique<VelkClient>(port); }},
    {"bare", [](std::uint16_t port) { return std::make_unique<BareTcpClient>(port); }},
    {"modbus", modbusTcpClient},
};

void serve(const std::string& name) {
  const TcpServer server = servers.at(name)();
  std::cout << server.port << std::endl;
  while (true) pause();
}

void count(const std::string& name, int port, int transactions) {
  const auto client = clients.at(name)(static_cast<std::uint16_t>(port));
  for (int i = 0; i < transactions; ++i) client->transact();
}

void measure(Words names) {
  Figures figures;
  for (const char* name : names) sections.at(name)(figures);
  print(figures);
}

void run(Words words) {
  const std::string first = words.empty() ? "" : words[0];
  if (first == "serve" && words.size() == 2) return serve(words[1]);
  if (first == "count" && words.size() == 4) return count(words[1], std::atoi(words[2]), std::atoi(words[3]));
  measure(words);
}

}  // namespace
}  // namespace velk::bench

int main(int argc, char** argv) {
  try {
    velk::bench::run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "velk_bench: " << error.what() << '\n';
    return 1;
  }
}
