#include "values/result.h"

#include "values/runtime_error.h"

namespace velk {

Byte resultOfError(double number) {
  struct Row {
    int number;
    Result result;
  };
  constexpr Row rows[] = {{RuntimeError::portAlreadyOpen, portAlreadyOpen},
                          {RuntimeError::deviceNotOpen, nothingToClose},
                          {RuntimeError::portNotOpen, portNotOpen},
                          {RuntimeError::badSocketState, notConnected},
                          {RuntimeError::socketNotClosed, notConnected}};
  for (const Row& row : rows) {
    if (row.number == number) return row.result;
  }
  return otherFailure;
}

}  // namespace velk
