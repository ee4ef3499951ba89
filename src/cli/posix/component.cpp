#include "cli/component_state.h"

namespace velk::cli {

std::optional<ComponentState> inspectComponent() {
  return std::nullopt;
}

}  // namespace velk::cli
