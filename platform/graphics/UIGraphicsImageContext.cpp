#include "platform/graphics/UIGraphicsImageContext.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/ImageContents.h"

namespace kestrova::platform {

std::optional<UIGraphicsImageContext> UIGraphicsImageContext::begin(CGSize size, bool opaque,
                                                                    double scale) {
  const double width = std::round(size.width * scale);
  const double height = std::round(size.height * scale);
  constexpr auto kLimit = static_cast<double>(CGImage::kMaximumPixels);
  // Written so that what is not a number is refused too.
  if (!(width >= 1 && width <= kLimit && height >= 1 && height <= kLimit && scale > 0)) {
    return std::nullopt;
  }
  auto image = CGImage::make(static_cast<std::size_t>(width), static_cast<std::size_t>(height));
  if (!image) return std::nullopt;
  std::ranges::fill(image->pixels(), opaque ? 0xff000000U : 0U);
  return UIGraphicsImageContext(std::move(image), size, scale);
}

std::optional<UIImage> UIGraphicsImageContext::takeImage() {
  if (!image_) return std::nullopt;
  return UIImage(ImageContents::bitmap(std::exchange(image_, nullptr)), size_, scale_,
                 UIImageOrientation::up);
}

}  // namespace kestrova::platform
