#pragma once

namespace velk::cli {

/// How the tools end.
enum ExitStatus : int {
  success = 0,
  badResult = 1,  ///< a result other than 0; `diff`: there are differences and nothing else;
  ///< `replay`: answers differ; `restore`, `replay`: declined; `doctor`: the component cannot be created, or a check
  ///< failed
  wrongUsage = 2,    ///< the command line cannot be carried out
  runtimeError = 3,  ///< the method raised a run-time error
  noLink = 4,   ///< the link, or an interface of the simulator, cannot be opened; `diff`, `replay`: it failed
  badFile = 5,  ///< a file, or standard output, cannot be read or written
  unchanged = 6,      ///< `backup --keep`: nothing was written, since nothing has changed
  interrupted = 130,  ///< Ctrl-C, or what else asks a program to end, came during a transfer
};

}  // namespace velk::cli
