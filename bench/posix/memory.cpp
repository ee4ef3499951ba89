#include <malloc.h>

#include <barrier>
#include <cstring>
#include <fstream>
#include <thread>

#include "posix/sections.h"
#include "posix/servers.h"
#include "velk_client.h"

namespace velk::bench {
namespace {

constexpr std::size_t threadCount = 200;

/// More stack than a transaction uses.
constexpr std::size_t stackUsed = 131072;

/// Touches the stack, so that its pages count before the link is opened.
__attribute__((noinline)) void touchStack() {
  char pages[stackUsed];
  std::memset(pages, 1, sizeof pages);
  asm volatile("" : : "r"(pages) : "memory");
}

/// Memory that belongs to this process alone and has been written to, in bytes.
double privatePages() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  std::string word;
  while (rollup >> word) {
    double kilobytes = 0;
    if (word == "Private_Dirty:" && rollup >> kilobytes) return kilobytes * 1024;
  }
  throw std::runtime_error("no smaps_rollup");
}

double heap() {
  return static_cast<double>(mallinfo2().uordblks);
}

}  // namespace

void measureMemory(Figures& figures) {
  const TcpServer server = startTcpServer();
  std::barrier<> gate(threadCount + 1);
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < threadCount; ++i) {
    threads.emplace_back([&] {
      touchStack();
      gate.arrive_and_wait();
      gate.arrive_and_wait();
      VelkClient velk(server.port);
      velk.transact();
      gate.arrive_and_wait();
      gate.arrive_and_wait();
    });
  }
  gate.arrive_and_wait();
  const double pagesBefore = privatePages();
  const double heapBefore = heap();
  gate.arrive_and_wait();
  gate.arrive_and_wait();
  figures["memory.heap"] = (heap() - heapBefore) / threadCount;
  figures["memory.pages"] = (privatePages() - pagesBefore) / threadCount;
  gate.arrive_and_wait();
}

}  // namespace velk::bench
