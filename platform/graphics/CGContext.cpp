#include "platform/graphics/CGContext.h"

#include <algorithm>
#include <cmath>

#include "platform/graphics/GraphicsError.h"

namespace kestrova::platform {

std::optional<CGContext> CGContext::make(std::span<std::uint8_t> data, std::size_t width,
                                         std::size_t height, std::size_t bitsPerComponent,
                                         std::size_t bytesPerRow, CGImageAlphaInfo bitmapInfo) {
  constexpr std::size_t kPixelSize = 4;
  const bool fits = CGImage::isAllowed(width, height) && bytesPerRow / kPixelSize >= width &&
                    data.size() / bytesPerRow >= height;
  if (!fits || bitsPerComponent != 8 || bitmapInfo != CGImageAlphaInfo::noneSkipFirst) {
    return std::nullopt;
  }
  return CGContext({data.data(), width, height, bytesPerRow, PixelTarget::Format::noneSkipFirst});
}

Result<Done> CGContext::draw(const std::shared_ptr<const CGImage>& image, const CGRect& rect) {
  if (transform_.b != 0 || transform_.c != 0) {
    return graphicsError(GraphicsErrorCode::unavailable, "drawing an image turned or sheared");
  }
  const auto from = transform_.apply(rect.origin);
  const auto to = transform_.apply({rect.maxX(), rect.maxY()});
  const bool mirrorsX = to.x < from.x;
  const bool mirrorsY = to.y < from.y;
  const auto orientation = mirrorsX && mirrorsY ? UIImageOrientation::down
                           : mirrorsX           ? UIImageOrientation::upMirrored
                           : mirrorsY           ? UIImageOrientation::downMirrored
                                                : UIImageOrientation::up;
  const CGRect place{
      {std::min(from.x, to.x), static_cast<double>(target_.height) - std::max(from.y, to.y)},
      {std::abs(to.x - from.x), std::abs(to.y - from.y)}};
  BitmapRows rows(image);
  if (!target_.draw(rows, orientation, place)) {
    return graphicsError(GraphicsErrorCode::damaged, "a bitmap that breaks off");
  }
  return Done{};
}

}  // namespace kestrova::platform
