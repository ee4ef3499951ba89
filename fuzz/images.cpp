/// Memory images: any text is read or refused with a sentence, and what was read is written and read back the
/// same.

#include <sstream>

#include "simulator/image.h"
#include "support/require.h"
#include "values/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velk::simulator;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  try {
    const Store store = readImage(in);
    std::stringstream copy;
    writeImage(copy, store);
    velk::fuzz::require(readImage(copy) == store, "an image reads back as it was written");
  } catch (const ImageError&) {
  }
  return 0;
}
