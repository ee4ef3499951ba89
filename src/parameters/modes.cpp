#include "parameters/modes.h"

#include <cmath>

namespace velk::parameters {
namespace {

/// The code with number n starts at character 3n, counted from 1; that is what makes the division below work.
constexpr std::string_view packedCodes = "||BI|PB|DI|RO|T1|T2|T3|T4|UD|LC|RC|RS|SS|IN|TH|ML|LO|PS|AL|AU|T5";
static_assert(packedCodes.size() == 3 * lastMode + 1);

}  // namespace

Byte ModeToNr(std::string_view code) {
  // A search for any part of the list, rounded to the nearest code, not a comparison of whole codes: "I"
  // gives 1 and "|P" gives 2, and hosts rely on it.
  const auto found = packedCodes.find(code);
  if (found == std::string_view::npos) return 0;
  return static_cast<Byte>(std::lround(static_cast<double>(found + 1) / 3));
}

std::string_view codeOf(Byte mode, bool isRoller) {
  if (mode == 0 || mode > lastMode) return {};
  if (mode == rollerMode && !isRoller) return "DI";
  return packedCodes.substr(std::size_t{3} * mode - 1, 2);
}

std::string ModeToStr(const link::Memory& memory, Byte mode, Byte output) {
  if (mode != rollerMode) return std::string(codeOf(mode, false));
  const Bytes reply = memory.tryRead(1, rollerMarker(output));
  const bool isRoller = byteAt(reply, 0) == 0 && reply.size() > 1 && byteAt(reply, 1) == output;
  return std::string(codeOf(mode, isRoller));
}

}  // namespace velk::parameters
