#pragma once

#include <optional>
#include <vector>

#include "simulator/controller.h"
#include "simulator/faults.h"
#include "simulator/module.h"
#include "simulator/trace.h"
#include "simulator/watch.h"

namespace velk::simulator {

/// Where a host leaves a request, `decode`'s five bytes, and the byte that it sets to 255 when it is there.
constexpr Address requestPlace{.page = 0, .offset = 0x0B};
constexpr std::size_t requestSize = 5;
constexpr Address triggerPlace{.page = 0, .offset = 0};
constexpr Byte triggered = 255;

/// What a request asks of a module, decoded from number and direction byte.
enum class Action : Byte {
  unknown,
  identify,
  tellVersion,
  readPiece,
  writePiece,
  readSample,
  writeSample,
  readLong,
  writeLong,
};

/// One request to a module.
struct ModuleRequest {
  int serial;
  Byte number;  ///< of the piece, sample or long record
  Action action;
  Byte count = 0;  ///< bytes of a piece
  Byte bank = 0;   ///< of a sample
};

/// Reply codes of the simulated bus.
enum ReplyCode : Byte {
  understood = 0,
  notUnderstood = 128,
  notThere = 255,
};

/// Decodes number, direction and serial number, the five bytes behind the marker. Some values have two
/// meanings: 15 bytes of piece 0 are the identification of a module that has one, a read of 10 bytes is the
/// version request of a module that tells its version, and the numbers of samples start at 16.
ModuleRequest decode(std::string_view header, const SimulatedModule* module);

/// "module 090255: read piece 1, 10 bytes".
std::string describe(const ModuleRequest& request);

/// The module mailbox of the external memory: a header at 0x000A, data at 0x0010, a trigger at 0x0000 that a
/// host writes 255 to. The controller clears it when the module has answered; the reply code then lies in the
/// header's first byte. Records and samples travel through the buffer in page 26 of the high block memory.
///
/// A request needs the marker 222 in front, or must repeat the one before it.
class MailboxDevice final : public Device {
 public:
  /// `watch`, when there is one, outlives the device.
  MailboxDevice(std::vector<SimulatedModule> modules, Faults faults, Trace trace, Watch* watch = nullptr);

  [[nodiscard]] bool covers(Address at) const override;
  [[nodiscard]] const std::vector<SimulatedModule>& modules() const { return modules_; }

  /// Puts others in their place; a request that is under way is for the one with its number.
  void replace(std::vector<SimulatedModule> modules);

  void beforeRead(Store& store, const Transfer& transfer) override;
  void afterWrite(Store& store, const Transfer& transfer) override;

 private:
  void start(Store& store);
  /// Carries the request out and clears the trigger.
  void answer(Store& store);
  void giveCode(Store& store);

  Byte carryOut(Store& store);
  SimulatedModule* find(int serial);

  std::vector<SimulatedModule> modules_;
  Faults faults_;
  Trace trace_;
  Watch* watch_;
  unsigned requests_ = 0;
  Bytes lastHeader_;  ///< without the marker
  SimulatedModule* module_ = nullptr;
  ModuleRequest request_{};
  Plan plan_;
  bool waiting_ = false;           ///< the trigger is set
  std::optional<Byte> replyCode_;  ///< known, but not given yet
};

}  // namespace velk::simulator
