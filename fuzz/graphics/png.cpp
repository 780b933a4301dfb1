#include "fuzz/graphics/Picture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kestrova::fuzz::readPicture(data, size);
  return 0;
}
