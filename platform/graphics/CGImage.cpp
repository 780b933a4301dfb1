#include "platform/graphics/CGImage.h"

#include <algorithm>

namespace kestrova::platform {

bool CGImage::isAllowed(std::size_t width, std::size_t height) {
  return width > 0 && height > 0 && width <= kMaximumPixels && height <= kMaximumPixels / width;
}

std::shared_ptr<CGImage> CGImage::make(std::size_t width, std::size_t height) {
  if (!isAllowed(width, height)) return nullptr;
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the constructor is private.
  return std::shared_ptr<CGImage>(new CGImage(width, height));
}

bool CGImage::isOpaque() const {
  return std::ranges::all_of(pixels(), [](std::uint32_t pixel) { return pixel >> 24U == 255; });
}

}  // namespace kestrova::platform
