#pragma once

namespace velk::cli {

/// How the tools end.
enum ExitStatus : int {
  success = 0,
  badResult = 1,     ///< the method's result is not 0
  wrongUsage = 2,    ///< the command line cannot be carried out
  runtimeError = 3,  ///< the method raised a run-time error
  noLink = 4,        ///< the link, or an interface of the simulator, cannot be opened
};

}  // namespace velk::cli
