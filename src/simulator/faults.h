#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "values/bytes.h"

namespace velk::simulator {

/// How a session misbehaves at one request; by default not at all.
struct Plan {
  std::optional<Byte> status;            ///< refused with this status and not carried out
  bool silent = false;                   ///< carried out, but no reply
  std::chrono::milliseconds late{0};     ///< how much later the reply comes
  std::optional<std::size_t> shortTo;    ///< only so many bytes of the reply
  bool wrongHeader = false;              ///< the header of the reply is not the request's; echo mode has none
  std::size_t foreign = 0;               ///< frames of others in front of the reply
  std::optional<std::size_t> noEcho;     ///< echo mode: the byte (from 1) that is lost, and the frame with it
  std::optional<std::size_t> wrongEcho;  ///< echo mode: the byte (from 1) that is heard and echoed wrongly
  bool disconnect = false;               ///< the connection ends instead of a reply

  // Requests to modules
  bool stuck = false;        ///< the controller never carries it out
  unsigned busy = 0;         ///< polls until it does
  unsigned pending = 0;      ///< polls of the reply code that see none yet
  std::optional<Byte> code;  ///< not carried out, and answered with this reply code
};

/// What a fault counts: the memory requests of one connection, or the requests to modules.
enum class Counts : Byte { requests, moduleRequests };

/// One way to misbehave, as users write it.
struct FaultKind {
  std::string_view name;
  std::string_view argument;  ///< its name in descriptions; empty when the kind takes none
  int fallback = -1;          ///< what a missing argument stands for; below 0: it may not be missing
  int highest = 0;            ///< the largest argument
  std::string_view help;
  void (*apply)(Plan& plan, int argument) = nullptr;
  Counts counts = Counts::requests;
};

/// All kinds, in the order of descriptions.
std::span<const FaultKind> faultKinds();

/// A kind of fault at chosen requests. The memory requests of one connection count from 1, each attempt of a
/// host being one; the login is request 0. Requests to modules count from 1 over all connections.
struct Fault {
  const FaultKind* kind;
  int argument;
  unsigned first;
  unsigned last;
};

/// Reads "KIND[=N]@WHICH", where WHICH is a request ("3"), a range ("2-4", "5-") or "*" for all memory
/// requests: "status=7@3", "late=500@2-4", "silent@*". Throws std::invalid_argument with a sentence that says
/// what is wrong.
Fault parseFault(std::string_view text);

/// Adds a fault to the plan for a request that it names.
void apply(const Fault& fault, unsigned request, Counts counts, Plan& plan);

/// The faults of a session.
class Faults {
 public:
  Faults() = default;
  Faults(std::initializer_list<std::string_view> texts) {
    for (const std::string_view text : texts) add(text);
  }

  void add(std::string_view text) { faults_.push_back(parseFault(text)); }

  /// What happens at a request: all faults that name it, together.
  [[nodiscard]] Plan planFor(unsigned request, Counts counts = Counts::requests) const;

 private:
  std::vector<Fault> faults_;
};

}  // namespace velk::simulator
