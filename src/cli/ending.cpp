#include "cli/ending.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

#include "cli/exit_status.h"
#include "cli/retry.h"

namespace velk::cli {
namespace {

/// Says why when standard output has failed, now or before.
bool outputFailed() {
  errno = 0;
  std::cout.flush();
  const bool flushed = std::fflush(stdout) == 0;
  const int reason = errno;
  if (flushed && std::ferror(stdout) == 0 && std::cout) return false;
  std::cerr << "velk: standard output cannot be written";
  if (reason != 0) std::cerr << ": " << std::generic_category().message(reason);
  std::cerr << '\n';
  return true;
}

}  // namespace

int ended(int status) {
  if (const int count = retry().repeated(); count != 0) {
    std::cerr << "velk: " << count << (count == 1 ? " request was" : " requests were")
              << " lost on the way and repeated\n";
  }
  const bool isError = status != success && status != badResult;
  return outputFailed() && !isError ? badFile : status;
}

}  // namespace velk::cli
