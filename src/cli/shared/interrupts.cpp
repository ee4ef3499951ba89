#include "cli/shared/interrupts.h"

#include "cli/shared/failure.h"

namespace velk::cli {

void checkInterrupt() {
  if (isInterrupted()) throw Failure(interrupted, "interrupted");
}

}  // namespace velk::cli
