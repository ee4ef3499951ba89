#include "cli/velk/connection/expect_done.h"

#include "cli/shared/failure.h"
#include "component/result_codes.h"

namespace velk::cli {

void expectDone(Byte result, const std::string& what) {
  if (result == 0) return;
  throw Failure(badResult, what + ": " + std::to_string(result) + " (" + meaningOf(result) + ")", result);
}

}  // namespace velk::cli
