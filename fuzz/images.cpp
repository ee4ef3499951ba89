/// Memory images: any text is read or refused with a sentence, and what was read is written and read back the
/// same.

#include <sstream>

#include "simulator/image.h"
#include "support/target.h"

void velk::fuzz::run(Input input) {
  std::istringstream in(input.rest());
  try {
    const simulator::Store store = simulator::readImage(in);
    std::stringstream copy;
    writeImage(copy, store);
    require(simulator::readImage(copy) == store, "an image reads back as it was written");
  } catch (const simulator::ImageError&) {
  }
}
