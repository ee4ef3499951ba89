#include "simulator/mailbox.h"

#include <algorithm>
#include <array>

#include "values/numbers.h"

namespace velk::simulator {
namespace {

constexpr Address headerPlace{.page = 0, .offset = 0x0A};
constexpr Address dataPlace{.page = 0, .offset = 0x10};
constexpr Address longBuffer{.area = Area::highBlock, .page = 26, .offset = 0};
constexpr Byte marker = 222;
constexpr Byte firstSample = 16;

/// Direction bytes that mean the same; the count of bytes grows along the row.
struct Direction {
  Byte first;
  Byte last;
  Action action;
  Byte bank = 0;
};

constexpr std::array directions{
    Direction{1, 16, Action::readPiece},         Direction{65, 80, Action::readPiece},
    Direction{193, 208, Action::writePiece},     Direction{31, 31, Action::readLong},
    Direction{159, 159, Action::writeLong},      Direction{63, 63, Action::readSample, 0},
    Direction{127, 127, Action::readSample, 1},  Direction{191, 191, Action::writeSample, 0},
    Direction{255, 255, Action::writeSample, 1},
};

Direction directionOf(Byte value) {
  const auto* const found = std::find_if(directions.begin(), directions.end(), [value](const Direction& row) {
    return value >= row.first && value <= row.last;
  });
  return found == directions.end() ? Direction{value, value, Action::unknown} : *found;
}

/// Reads of pieces that some modules take for something else.
Action readOf(const SimulatedModule* module, Byte number, Byte direction, Byte count) {
  constexpr Byte identificationCount = 15;
  constexpr Byte versionRequest = 10;
  if (module == nullptr) return Action::readPiece;
  if (module->can(identifies) && number == 0 && count == identificationCount) return Action::identify;
  if (module->can(tellsVersion) && direction == versionRequest) return Action::tellVersion;
  return Action::readPiece;
}

bool isSample(Action action) {
  return action == Action::readSample || action == Action::writeSample;
}

std::string sampleName(const ModuleRequest& request) {
  return "sample " + std::to_string(request.number) + " bank " + (request.bank == 0 ? "A" : "B");
}

std::string pieceName(const ModuleRequest& request) {
  return "piece " + std::to_string(request.number) + ", " + std::to_string(request.count) +
         (request.count == 1 ? " byte" : " bytes");
}

std::string describeAction(const ModuleRequest& request) {
  const std::string number = std::to_string(request.number);
  switch (request.action) {
    case Action::identify:
      return "identification";
    case Action::tellVersion:
      return "version, offset " + number;
    case Action::readPiece:
      return "read " + pieceName(request);
    case Action::writePiece:
      return "write " + pieceName(request);
    case Action::readSample:
      return sampleName(request) + ", read";
    case Action::writeSample:
      return sampleName(request) + ", write";
    case Action::readLong:
      return "long record " + number + ", read";
    case Action::writeLong:
      return "long record " + number + ", write";
    case Action::unknown:
      break;
  }
  return "unknown request";
}

/// Counts a poll; true when there were enough before it.
bool isOver(unsigned& polls) {
  if (polls == 0) return true;
  --polls;
  return false;
}

/// Moves the bytes of a request between the module and the memory.
void transfer(const ModuleRequest& request, SimulatedModule& module, Store& store) {
  switch (request.action) {
    case Action::identify:
      return store.write(dataPlace, module.identification());
    case Action::tellVersion:
      return store.write(dataPlace, module.version());
    case Action::readPiece:
      return store.write(dataPlace, module.read(request.number, request.count));
    case Action::writePiece:
      return module.write(request.number, store.read(dataPlace, request.count));
    case Action::readSample:
      return store.write(longBuffer, module.sample(request.bank, request.number));
    case Action::writeSample:
      return module.writeSample(request.bank, request.number,
                                store.read(longBuffer, SimulatedModule::longSize));
    case Action::readLong:
      return store.write(longBuffer, module.longRecord(request.number));
    case Action::writeLong:
      return module.writeLongRecord(request.number, store.read(longBuffer, SimulatedModule::longSize));
    case Action::unknown:
      break;
  }
}

}  // namespace

ModuleRequest decode(std::string_view header, const SimulatedModule* module) {
  const Byte number = byteAt(header, 0);
  const Byte direction = byteAt(header, 1);
  const Direction row = directionOf(direction);
  ModuleRequest request{.serial = byteAt(header, 2) * 10000 + byteAt(header, 3) * 100 + byteAt(header, 4),
                        .number = number,
                        .action = row.action,
                        .count = static_cast<Byte>(direction - row.first + 1),
                        .bank = row.bank};
  if (row.action == Action::readPiece) request.action = readOf(module, number, direction, request.count);
  if (isSample(row.action)) {
    if (number < firstSample || (module != nullptr && !module->can(keepsSamples))) {
      request.action = Action::unknown;
    }
    request.number = static_cast<Byte>(number - firstSample);
  }
  return request;
}

std::string describe(const ModuleRequest& request) {
  constexpr Byte digits = 6;
  return "module " + zeroPadded(request.serial, digits) + ": " + describeAction(request);
}

MailboxDevice::MailboxDevice(std::vector<SimulatedModule> modules, Faults faults, Trace trace, Watch* watch)
    : modules_(std::move(modules)), faults_(std::move(faults)), trace_(std::move(trace)), watch_(watch) {}

void MailboxDevice::replace(std::vector<SimulatedModule> modules) {
  const int serial = module_ == nullptr ? 0 : module_->serial();
  modules_ = std::move(modules);
  if (module_ != nullptr) module_ = find(serial);
}

bool MailboxDevice::covers(Address at) const {
  return at == triggerPlace || at == headerPlace;
}

void MailboxDevice::afterWrite(Store& store, const Transfer& transfer) {
  if (transfer.covers(triggerPlace) && store[triggerPlace] == triggered) start(store);
}

void MailboxDevice::beforeRead(Store& store, const Transfer& transfer) {
  if (waiting_) {
    if (!plan_.stuck && isOver(plan_.busy)) answer(store);
  } else if (replyCode_ && transfer.covers(headerPlace) && isOver(plan_.pending)) {
    giveCode(store);
  }
}

void MailboxDevice::start(Store& store) {
  const Bytes header = store.read(requestPlace, requestSize);
  const bool isWellFormed = store[headerPlace] == marker || header == lastHeader_;
  lastHeader_ = header;
  module_ = find(decode(header, nullptr).serial);
  request_ = decode(header, module_);
  if (!isWellFormed) request_.action = Action::unknown;
  if (trace_) trace_(describe(request_));
  plan_ = faults_.planFor(++requests_, Counts::moduleRequests);
  if (watch_ != nullptr) {
    watch_->log.add(LoggedRequest::ofNote(noConnection, describe(request_)));
    watch_->faults.next(Counts::moduleRequests, plan_);
  }
  replyCode_.reset();
  waiting_ = true;
  if (!plan_.stuck && plan_.busy == 0) answer(store);
}

void MailboxDevice::answer(Store& store) {
  waiting_ = false;
  replyCode_ = plan_.code ? *plan_.code : carryOut(store);
  store[triggerPlace] = 0;
  if (plan_.pending == 0) giveCode(store);
}

void MailboxDevice::giveCode(Store& store) {
  store[headerPlace] = *replyCode_;
  replyCode_.reset();
}

Byte MailboxDevice::carryOut(Store& store) {
  if (module_ == nullptr) return notThere;
  if (request_.action == Action::unknown) return notUnderstood;
  transfer(request_, *module_, store);
  return understood;
}

SimulatedModule* MailboxDevice::find(int serial) {
  const auto found = std::find_if(modules_.begin(), modules_.end(), [serial](const SimulatedModule& module) {
    return module.serial() == serial;
  });
  return found == modules_.end() ? nullptr : &*found;
}

}  // namespace velk::simulator
