#include "controller/selector.h"

#include "link/memory.h"

namespace velk::controller {

bool isRead(std::string_view readOrWrite) {
  if (std::string_view("RW").find(readOrWrite) == std::string_view::npos) throw link::Stop{badSelector};
  return readOrWrite == "R";
}

}  // namespace velk::controller
