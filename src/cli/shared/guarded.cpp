#include "cli/shared/guarded.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <new>
#include <stdexcept>
#include <system_error>

#include "cli/shared/system_files.h"
#include "values/runtime_error.h"

namespace velk::cli {

std::optional<Failure> failureOfOutput() {
  errno = 0;
  std::cout.flush();
  const bool flushed = std::fflush(stdout) == 0;
  if (flushed && std::ferror(stdout) == 0 && std::cout) return std::nullopt;
  // Where the buffer was full before, nobody has kept why: one more byte tells.
  if (errno == 0 && std::fputc('\n', stdout) != EOF) std::fflush(stdout);
  const int reason = errno;
  const std::string why = reason == 0 ? "" : ": " + std::generic_category().message(reason);
  return Failure(badFile, "standard output cannot be written" + why);
}

std::variant<int, Failure> outcomeOf(const std::function<int()>& carryOut) {
  try {
    return carryOut();
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::invalid_argument& error) {
    return Failure(wrongUsage, error.what());
  } catch (const RuntimeError& error) {
    return Failure(runtimeError, error.what());
  } catch (const std::system_error& error) {
    return Failure(badFile, error.what());
  } catch (const std::bad_alloc&) {
    return Failure(runtimeError, "there is not enough memory");
  } catch (const std::exception& error) {
    return Failure(runtimeError, error.what());
  }
}

bool asksForJson(const std::vector<std::string>& words) {
  const auto end = std::find(words.begin(), words.end(), "--");
  return std::find(words.begin(), end, "--json") != end;
}

int guarded(std::string_view program, const std::function<int()>& carryOut, bool asJson) {
  system::holdStandardStreams();
  const auto outcome = outcomeOf(carryOut);
  const auto* const failure = std::get_if<Failure>(&outcome);
  if (failure != nullptr) tell(program, *failure, asJson);
  const int status = failure != nullptr ? failure->status : std::get<int>(outcome);
  const auto lost = failureOfOutput();
  if (lost) tell(program, *lost, asJson);
  const bool isError = status != success && status != badResult && status != unchanged;
  return lost && !isError ? lost->status : status;
}

}  // namespace velk::cli
