#include "parameters/read_output.h"

#include "parameters/modes.h"
#include "parameters/output_bytes.h"
#include "values/result.h"

namespace velk::parameters {

void readOutput(const link::Memory& memory, const OutputAccess& access) {
  OutputBytes bytes(memory, access.output);
  bytes.fetch({.at = modeOffset, .size = 1});
  access.mode = ModeToStr(memory, bytes.at(Area::external, modeOffset), access.output);
  const Layout* const layout = layoutOf(access.mode);
  if (access.count <= 0 && (layout == nullptr || !layout->itemsWithoutCount)) return;

  access.parameters.clear();
  if (layout != nullptr) bytes.fetch(layout->block);
  bytes.fetch(furtherByte);
  if (layout == nullptr) throw link::Stop{badMode};

  const Range range = resolveRange(*layout, access.offset, access.count);
  bytes.fetch(layout->own);
  for (std::size_t k = range.first; k < range.end; ++k) {
    const Item& item = layout->items[k];
    access.parameters += decoded(item, bytes.at(item.area, item.at));
  }
}

}  // namespace velk::parameters
