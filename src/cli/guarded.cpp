#include "cli/guarded.h"

#include <iostream>
#include <new>
#include <stdexcept>
#include <system_error>

#include "cli/failure.h"
#include "cli/system_files.h"
#include "values/runtime_error.h"

namespace velk::cli {

int guarded(std::string_view program, const std::function<int()>& carryOut) {
  const auto report = [&](std::string_view sentence, ExitStatus status) {
    std::cerr << program << ": " << sentence << '\n';
    return status;
  };
  system::holdStandardStreams();
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

}  // namespace velk::cli
