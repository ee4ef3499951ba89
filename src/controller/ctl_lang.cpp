#include "controller/ctl_lang.h"

#include "controller/languages.h"
#include "values/result.h"

namespace velk::controller {
namespace {

constexpr Byte textSize = 16;

link::Address textAt(std::size_t index) {
  return displayText(static_cast<Byte>(firstText + index));
}

}  // namespace

void Ctl_Lang(const link::Memory& memory, std::string_view language) {
  const Texts* const texts = textsOf(language);
  if (texts == nullptr) throw link::Stop{badValue};
  for (std::size_t i = 0; i < texts->size(); ++i) memory.write(textAt(i), padded((*texts)[i], textSize));
  for (std::size_t i = 0; i < texts->size(); ++i) {
    // The whole rest of the reply has to be the text.
    if (memory.read(textSize, textAt(i)) != padded((*texts)[i], textSize))
      throw link::Stop{readsBackDifferent};
  }
}

}  // namespace velk::controller
