#include "cpu_time.h"

#include <windows.h>

namespace velk::bench {

double cpuTime() {
  FILETIME created;
  FILETIME ended;
  ULARGE_INTEGER kernel;
  ULARGE_INTEGER user;
  FILETIME system;
  FILETIME own;
  GetThreadTimes(GetCurrentThread(), &created, &ended, &system, &own);
  kernel = {.LowPart = system.dwLowDateTime, .HighPart = system.dwHighDateTime};
  user = {.LowPart = own.dwLowDateTime, .HighPart = own.dwHighDateTime};
  return static_cast<double>(kernel.QuadPart + user.QuadPart) / 10;
}

}  // namespace velk::bench
