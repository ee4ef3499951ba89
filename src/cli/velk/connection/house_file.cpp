#include "cli/velk/connection/house_file.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "cli/house/check.h"
#include "cli/house/simulated_modules.h"
#include "cli/shared/failure.h"
#include "cli/shared/files.h"
#include "cli/velk/connection/patient_session.h"
#include "cli/velk/things/module.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/mailbox.h"
#include "values/numbers.h"

namespace velk::cli {
namespace {

using simulator::Action;
using simulator::Store;
using simulator::Transfer;

std::string_view regionOf(Address at) {
  const auto* const region = memory::regionAt(at);
  return region == nullptr ? std::string_view() : region->name;
}

bool isClock(Address at) {
  return regionOf(at).starts_with("clock");
}

bool isMailbox(Address at) {
  return regionOf(at).starts_with("mailbox") || regionOf(at).starts_with("long-record");
}

}  // namespace

/// Stands in front of the whole memory and keeps what no file holds from being asked for.
class HouseFile::Keeper final : public simulator::Device {
 public:
  explicit Keeper(const HouseFile& house) : house_(house) {}

  [[nodiscard]] bool covers(Address /*at*/) const override { return true; }

  void beforeRead(Store& /*store*/, const Transfer& transfer) override {
    if (every(transfer, isClock)) refuse("a backup holds no clock");
  }

  void beforeWrite(Store& /*store*/, const Transfer& transfer) override {
    if (every(transfer, isMailbox)) return;
    for (std::size_t i = 0; i < transfer.count; ++i) requirePlace(transfer.first.next(i));
    prepare();
  }

  void afterWrite(Store& store, const Transfer& transfer) override {
    if (!transfer.covers(simulator::triggerPlace) || store[simulator::triggerPlace] != simulator::triggered) {
      return;
    }
    try {
      askModule(simulator::decode(store.read(simulator::requestPlace, simulator::requestSize), nullptr));
    } catch (...) {
      store[simulator::triggerPlace] = 0;
      throw;
    }
  }

  /// The file, if something was written.
  [[nodiscard]] std::optional<OutputFile>& file() { return file_; }
  [[nodiscard]] bool askedModules() const { return askedModules_; }
  [[nodiscard]] bool wroteModules() const { return wroteModules_; }

 private:
  template <class Test>
  static bool every(const Transfer& transfer, Test test) {
    for (std::size_t i = 0; i < transfer.count; ++i) {
      if (!test(transfer.first.next(i))) return false;
    }
    return true;
  }

  [[noreturn]] void refuse(const std::string& why) const {
    throw std::invalid_argument(house_.path_ + ": " + why);
  }

  void requirePlace(Address at) const {
    if (isClock(at)) refuse("a backup holds no clock");
    if (!memory::thingAt(at)) refuse("a backup holds nothing at " + keyOf(at));
    const bool isShared =
        std::find(sharedWithMailbox.begin(), sharedWithMailbox.end(), at) != sharedWithMailbox.end();
    if (memory::isReadOnly(at) && !isShared) {
      refuse("what the controller keeps for itself at " + keyOf(at) + " is not written");
    }
  }

  /// Before the first write.
  void prepare() {
    if (file_) return;
    if (house_.backup_.condition != Condition::intact) {
      throw Failure(badFile, house_.path_ + ": " + textOf(house_.backup_.condition) +
                                 "; velk writes to none but its own");
    }
    file_.emplace(house_.path_);
  }

  void askModule(const simulator::ModuleRequest& request) {
    constexpr Byte digits = 6;
    const std::string serial = zeroPadded(request.serial, digits);
    const auto& modules = house_.backup_.modules;
    const auto found = std::find_if(modules.begin(), modules.end(),
                                    [&](const Module& module) { return module.serial == serial; });
    if (found == modules.end()) fail("there is no module " + serial + " in the file");
    if (!found->obstacle.empty()) {
      fail(titleOf(*found) + " cannot be read as it was saved: " + found->obstacle);
    }
    const bool isLong = request.action >= Action::readSample;
    if (isLong) fail("of " + titleOf(*found) + " the file holds the record alone, no samples or texts");
    askedModules_ = true;
    if (request.action != Action::writePiece) return;
    prepare();
    wroteModules_ = true;
  }

  [[noreturn]] void fail(const std::string& why) const {
    throw Failure(badResult, house_.path_ + ": " + why);
  }

  const HouseFile& house_;
  std::optional<OutputFile> file_;
  bool askedModules_ = false;
  bool wroteModules_ = false;
};

HouseFile::HouseFile(std::string path)
    : path_(std::move(path)),
      text_(readFile(path_)),
      backup_(loadBackup(path_)),
      controller_(storeOf(backup_.lines)) {
  auto keeper = std::make_unique<Keeper>(*this);
  keeper_ = keeper.get();
  controller_.attach(std::move(keeper));  // in front of the mailbox
  controller_.attach(std::make_unique<simulator::MailboxDevice>(simulatedModules(backup_.modules),
                                                                simulator::Faults{}, simulator::Trace{}));
}

HouseFile::~HouseFile() = default;

std::unique_ptr<simulator::Peer> HouseFile::session(Byte busAddress) {
  return std::make_unique<PatientSession>(std::make_unique<simulator::EthernetSSession>(
      controller_, simulator::SessionOptions{.busAddress = busAddress}));
}

void HouseFile::save(Serial& serial) {
  auto& file = keeper_->file();
  if (!file) return;
  const bool mailboxUsed = keeper_->askedModules();
  if (keeper_->wroteModules()) {
    for (Module& module : backup_.modules) {
      if (module.obstacle.empty()) module = readModule(serial, module.serial);
    }
  }
  Store store = controller_.snapshot();
  for (const Address at : sharedWithMailbox) {
    if (mailboxUsed) store[at] = byteOf(backup_.lines, at);
  }
  backup_.lines = linesOf(store);
  const std::string text = textOf(backup_);
  try {
    checkModes(backup_.lines);
    parseBackup(text);
  } catch (const std::invalid_argument& error) {
    throw Failure(badFile, path_ + ": not written: " + error.what());
  }
  if (readFile(path_) != text_) {
    throw Failure(badFile, path_ + ": not written: another program has changed the file meanwhile");
  }
  file->write(text);
  text_ = text;
}

}  // namespace velk::cli
