#include "link/selector.h"

#include "link/memory.h"
#include "values/result.h"

namespace velk::link {

bool isRead(std::string_view readOrWrite) {
  if (std::string_view("RW").find(readOrWrite) == std::string_view::npos) throw Stop{badSelector};
  return readOrWrite == "R";
}

}  // namespace velk::link
