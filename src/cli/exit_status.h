#pragma once

namespace velk::cli {

/// How the tools end.
enum ExitStatus : int {
  success = 0,
  badResult = 1,     ///< a result other than 0; `diff`: there are differences; `restore`: declined;
                     ///< `doctor`: the component cannot be created
  wrongUsage = 2,    ///< the command line cannot be carried out
  runtimeError = 3,  ///< the method raised a run-time error
  noLink = 4,        ///< the link, or an interface of the simulator, cannot be opened
  badFile = 5,       ///< a file cannot be read or written
};

}  // namespace velk::cli
