#include "cli/shared/input.h"

#include <cstdio>
#include <iostream>

#include "cli/shared/interrupts.h"

namespace velk::cli {

bool readLine(std::string& line) {
  if (!isInterrupted() && std::getline(std::cin, line)) return !isInterrupted();
  // A console goes on behind Ctrl-C and Ctrl-Z.
  std::cin.clear();
  std::clearerr(stdin);
  return false;
}

}  // namespace velk::cli
