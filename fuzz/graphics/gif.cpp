// Any bytes as a GIF file: the images come in the size of the screen, and a second walk gives the
// same ones.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/graphics/CGImageSource.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrova::platform;
  Data file(size);
  if (size > 0) std::memcpy(file.bytes(), data, size);
  auto source = CGImageSource::make(std::make_shared<const Data>(std::move(file)));
  if (!source) return 0;
  auto& images = source.value();
  for (std::size_t i = 0; i < images.count(); ++i) {
    const auto image = images.imageAtIndex(i);
    if (images.propertiesAtIndex(i).empty()) std::abort();
    if (i % 8 != 0) continue;
    const auto again = images.imageAtIndex(i);
    if (static_cast<bool>(image) != static_cast<bool>(again)) std::abort();
    if (image && !std::ranges::equal(image.value()->pixels(), again.value()->pixels())) {
      std::abort();
    }
  }
  return 0;
}
