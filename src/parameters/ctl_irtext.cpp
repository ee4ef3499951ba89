#include "parameters/ctl_irtext.h"

#include "link/selector.h"
#include "values/result.h"

namespace velk::parameters {

Byte Ctl_IRText(const link::Memory& memory, std::string_view readOrWrite, Byte number,
                std::string_view text) {
  constexpr Byte lastText = 63;
  // The controller has no way to read these texts: the request is accepted and nothing is done.
  if (link::isRead(readOrWrite)) return nothingDone;
  if (number > lastText) throw link::Stop{badOffset};
  memory.write(infraredText(number), padded(text, 16));
  return 0;
}

}  // namespace velk::parameters
