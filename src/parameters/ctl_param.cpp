#include "parameters/ctl_param.h"

#include "link/selector.h"
#include "parameters/modes.h"
#include "parameters/read_output.h"
#include "parameters/write_output.h"
#include "values/result.h"

namespace velk::parameters {

using link::Stop;

void Ctl_Param(const link::Memory& memory, std::string_view readOrWrite, const OutputAccess& access) {
  if (access.output < 1 || access.output > lastOutput) throw Stop{badAddress};
  if (link::isRead(readOrWrite)) {
    readOutput(memory, access);
  } else {
    writeOutput(memory, access);
  }
}

}  // namespace velk::parameters
