#include "cli/shared/guarded.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <new>
#include <stdexcept>
#include <system_error>

#include "cli/shared/failure.h"
#include "cli/shared/system_files.h"
#include "values/runtime_error.h"

namespace velk::cli {

namespace {

/// Says why when standard output has failed, now or before.
bool outputFailed(std::string_view program) {
  errno = 0;
  std::cout.flush();
  const bool flushed = std::fflush(stdout) == 0;
  const int reason = errno;
  if (flushed && std::ferror(stdout) == 0 && std::cout) return false;
  std::cerr << program << ": standard output cannot be written";
  if (reason != 0) std::cerr << ": " << std::generic_category().message(reason);
  std::cerr << '\n';
  return true;
}

int statusOf(std::string_view program, const std::function<int()>& carryOut) {
  const auto report = [&](std::string_view sentence, ExitStatus status) {
    std::cerr << program << ": " << sentence << '\n';
    return status;
  };
  try {
    return carryOut();
  } catch (const Failure& failure) {
    return report(failure.what(), failure.status);
  } catch (const std::invalid_argument& error) {
    return report(error.what(), wrongUsage);
  } catch (const RuntimeError& error) {
    return report(error.what(), runtimeError);
  } catch (const std::system_error& error) {
    return report(error.what(), badFile);
  } catch (const std::bad_alloc&) {
    return report("there is not enough memory", runtimeError);
  } catch (const std::exception& error) {
    return report(error.what(), runtimeError);
  }
}

}  // namespace

int guarded(std::string_view program, const std::function<int()>& carryOut) {
  system::holdStandardStreams();
  const int status = statusOf(program, carryOut);
  const bool isError = status != success && status != badResult && status != unchanged;
  return outputFailed(program) && !isError ? badFile : status;
}

}  // namespace velk::cli
