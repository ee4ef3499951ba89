#pragma once

#include <algorithm>
#include <sstream>

#include "simulator/house_modules.h"
#include "simulator/mailbox.h"
#include "support/watched_house.h"

namespace velk::test {

/// What `Module` takes and gives back.
struct Record {
  Byte result = 0;
  Bytes data;
  Byte offset = 0;
  std::string model;
  Byte cpu = 0;
  std::string firmware;

  friend bool operator==(const Record&, const Record&) = default;
  friend std::ostream& operator<<(std::ostream& stream, const Record& r) {
    return stream << int{r.result} << ": " << testing::PrintToString(r.data) << " +" << int{r.offset}
                  << " model \"" << r.model << "\", CPU " << int{r.cpu} << ", firmware \"" << r.firmware
                  << '"';
  }
};

/// Bytes that differ from their neighbours: 1, 2, 3 ...
inline Bytes counted(std::size_t size) {
  Bytes data;
  while (data.size() < size) data += character(static_cast<int>(data.size() + 1));
  return data;
}

/// A module that tells this name, CPU type 16 and firmware 1.2.
inline simulator::SimulatedModule moduleOf(const std::string& number, const std::string& name,
                                           const Bytes& record = {}, Byte firstPiece = 0) {
  simulator::SimulatedModule module({.serial = std::stoi(number),
                                     .skills = simulator::identifies,
                                     .name = name,
                                     .version = {16, 1, 2},
                                     .firstPiece = 0,
                                     .record = {}});
  module.write(firstPiece, record);
  return module;
}

/// The simulated house with its modules, or with others. A test that tries one fault after the other
/// makes a house for each.
class ModuleHouse final : public WatchedHouse {
 public:
  explicit ModuleHouse(const simulator::Faults& faults = {}) {
    simulator::attachModules(controller, faults);
    reopen(faults);
  }

  explicit ModuleHouse(const std::vector<simulator::SimulatedModule>& modules) {
    controller.attach(
        std::make_unique<simulator::MailboxDevice>(modules, simulator::Faults(), simulator::Trace()));
    reopen({});
  }

  ModuleHouse(const std::string& number, const std::string& name, const Bytes& record = {},
              Byte firstPiece = 0)
      : ModuleHouse(std::vector{moduleOf(number, name, record, firstPiece)}) {}

  /// Opens the link again; its faults count from 1.
  void reopen(const simulator::Faults& faults) {
    host.setClock(std::chrono::minutes(2));  // whose steps are far below a millisecond
    open(LinkKind::ethernetQ, faults);
    restart();
  }

  Record read(const std::string& number, const Record& record = {}) { return call("R", number, record); }
  Record write(const std::string& number, const Record& record) { return call("W", number, record); }
  Byte write(const std::string& number, const Bytes& data, Byte offset = 0) {
    return write(number, Record{.data = data, .offset = offset}).result;
  }

  /// The time since the link was opened or since `restart`, in milliseconds.
  [[nodiscard]] int spent() const { return static_cast<int>((host.elapsed() - startedAt_).count()); }

  void restart() {
    requests.clear();
    startedAt_ = host.elapsed();
  }

  [[nodiscard]] std::size_t countOf(const std::string& request) const {
    return static_cast<std::size_t>(std::count(requests.begin(), requests.end(), request));
  }

  /// The last requests, as `sent` tells them.
  std::string last(std::size_t count) {
    if (requests.size() > count)
      requests.erase(requests.begin(), requests.end() - static_cast<std::ptrdiff_t>(count));
    return sent();
  }

  /// Number and direction byte of each header: "00 4F, 01 50".
  [[nodiscard]] std::string headers() const {
    std::string found;
    for (const std::string& request : requests) {
      const auto header = request.find(" V 000A DE ");
      if (header != std::string::npos) found += (found.empty() ? "" : ", ") + request.substr(header + 11, 5);
    }
    return found;
  }

  /// The data of all pieces that were written.
  [[nodiscard]] Bytes written() const {
    Bytes data;
    for (const std::string& request : requests) {
      const auto piece = request.find(" V 0010 ");
      if (request.front() != 'w' || piece == std::string::npos) continue;
      std::istringstream bytes(request.substr(piece + 8));
      for (int value = 0; bytes >> std::hex >> value;) data += character(value);
    }
    return data;
  }

  using SimulatedHouse::host, SimulatedHouse::memoryAt, SimulatedHouse::requests, SimulatedHouse::serial;
  using WatchedHouse::outcome, WatchedHouse::sent;

 private:
  void TestBody() override {}

  Record call(const std::string& direction, const std::string& number, Record r) {
    r.result = serial.Module(direction, number, r.data, r.offset, r.model, r.cpu, r.firmware);
    return r;
  }

  std::chrono::milliseconds startedAt_{0};
};

}  // namespace velk::test
