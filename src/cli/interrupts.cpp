#include "cli/interrupts.h"

#include "cli/failure.h"

namespace velk::cli {

void checkInterrupt() {
  if (isInterrupted()) throw Failure(interrupted, "interrupted");
}

}  // namespace velk::cli
