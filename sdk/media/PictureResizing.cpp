#include "sdk/media/PictureResizing.h"

#include <cmath>

#include "platform/graphics/UIGraphicsImageContext.h"

namespace kestrova {

namespace {

std::optional<UIImage> redrawn(const UIImage& image, CGSize size) {
  auto context = UIGraphicsImageContext::begin(size, false, image.scale());
  if (!context || !image.draw({{}, size}, *context)) return std::nullopt;
  return context->takeImage();
}

}  // namespace

std::optional<UIImage> resizedWithPercentage(const UIImage& image, double factor) {
  const auto size = image.size();
  return redrawn(image, {size.width * factor, size.height * factor});
}

std::optional<UIImage> resizedToWidth(const UIImage& image, double width) {
  const auto size = image.size();
  return redrawn(image, {width, std::ceil(width / size.width * size.height)});
}

}  // namespace kestrova
