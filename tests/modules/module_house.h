#pragma once

#include <algorithm>

#include "simulator/house_modules.h"
#include "support/simulated_house.h"

namespace velk::test {

/// What `Module` takes and gives back besides its result.
struct Record {
  Bytes data;
  Byte offset = 0;
  std::string model;
  Byte cpu = 0;
  std::string firmware;

  friend bool operator==(const Record&, const Record&) = default;
};

/// The simulated house with its modules. A test that tries one fault after the other makes a house for each.
class ModuleHouse final : public SimulatedHouse {
 public:
  explicit ModuleHouse(const simulator::Faults& faults = {}, LinkKind kind = LinkKind::ethernetQ) {
    simulator::attachModules(controller, faults, [this](const std::string& line) { asked.push_back(line); });
    open(kind, faults);
    openedAt_ = host.elapsed();
  }

  /// Opens the link again; its faults count from 1.
  void reopen(const simulator::Faults& faults) {
    open(LinkKind::ethernetQ, faults);
    restart();
  }

  Byte read(const std::string& serieNr, Record& record) { return call("R", serieNr, record); }
  Byte write(const std::string& serieNr, Record& record) { return call("W", serieNr, record); }
  Byte write(const std::string& serieNr, const Bytes& data, Byte offset = 0) {
    Record record{.data = data, .offset = offset};
    return write(serieNr, record);
  }

  /// The time since the link was opened or since `restart`, in milliseconds.
  [[nodiscard]] int spent() const { return static_cast<int>((host.elapsed() - openedAt_).count()); }

  void restart() {
    requests.clear();
    asked.clear();
    openedAt_ = host.elapsed();
  }

  [[nodiscard]] std::size_t countOf(const std::string& request) const {
    return static_cast<std::size_t>(std::count(requests.begin(), requests.end(), request));
  }

  using SimulatedHouse::controller;
  using SimulatedHouse::host;
  using SimulatedHouse::memoryAt;
  using SimulatedHouse::requests;
  using SimulatedHouse::serial;
  using SimulatedHouse::setMemory;

  std::vector<std::string> asked;  ///< the requests to modules

 private:
  void TestBody() override {}

  Byte call(const std::string& direction, const std::string& serieNr, Record& r) {
    return serial.Module(direction, serieNr, r.data, r.offset, r.model, r.cpu, r.firmware);
  }

  std::chrono::milliseconds openedAt_{0};
};

}  // namespace velk::test
