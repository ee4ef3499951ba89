#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "component/serial.h"
#include "simulator/controller.h"
#include "simulator/house.h"
#include "simulator/link_kind.h"
#include "simulator/loopback_host.h"
#include "support/bytes.h"

namespace velk::test {

using simulator::allLinks;
using simulator::isSerial;
using simulator::LinkKind;

inline std::string nameOf(LinkKind kind) {
  constexpr std::array names{"echo", "fast", "ethernetQ", "ethernetS"};
  return names[static_cast<std::size_t>(kind)];
}

/// A `Serial` in front of the simulated house.
class SimulatedHouse : public testing::Test {
 protected:
  void open(LinkKind kind, simulator::Faults faults = {}) {
    host.transferTime = std::chrono::milliseconds(1);
    const auto makePeer = [this, kind, faults] {
      return makeSession(kind, controller,
                         {.faults = faults, .trace = [this](const std::string& line) { note(line); }});
    };
    serial.CloseTCP();
    serial.CloseCom();
    if (isSerial(kind)) {
      host.plugIn(1, makePeer);
      ASSERT_EQ(serial.OpenCom(1, 9600, kind == LinkKind::fast), 0);
      serial.FlgBreak = false;
    } else {
      host.listen("house", 1000, makePeer);
      ASSERT_EQ(serial.OpenTCP("house", 1000), 0);
    }
    requests.clear();
  }

  /// Opens the fastest link with one fault.
  void openWith(const std::string& fault) { open(LinkKind::ethernetQ, {fault}); }

  [[nodiscard]] Bytes memoryAt(int high, int low, std::size_t count,
                               link::Area area = link::Area::external) const {
    return controller.snapshot().read(addressAt(area, static_cast<Byte>(high), static_cast<Byte>(low)),
                                      count);
  }

  void setMemory(int high, int low, const Bytes& data, link::Area area = link::Area::external) {
    link::Address at = addressAt(area, static_cast<Byte>(high), static_cast<Byte>(low));
    for (std::size_t i = 0; i < data.size(); ++i, at = at.next()) {
      controller.answer(link::writeRequest(1, at, std::string_view(data).substr(i, 1)));
    }
  }

  simulator::Controller controller{simulator::house()};
  simulator::LoopbackHost host;
  Serial serial{host};

  /// The requests since the link was opened, without their names: "write 1 V 0501 05".
  std::vector<std::string> requests;

 private:
  void note(const std::string& line) {
    if (line.rfind("read", 0) != 0 && line.rfind("write", 0) != 0) return;
    const auto end = std::min(line.find("  ", 6), line.find(" ->"));
    requests.push_back(line.substr(0, end));
  }
};

}  // namespace velk::test
