#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "platform/foundation/Result.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/CGImage.h"
#include "platform/graphics/PixelTarget.h"

namespace kestrova::platform {

// How the bytes of a pixel are used.
enum class CGImageAlphaInfo {
  // The first byte is no alpha but unused; red, green and blue follow.
  noneSkipFirst = 6,
};

// Draws into memory that the caller lends and that outlives the context: rows from the top, device
// RGB. Drawing coordinates count from the lower left corner in pixels. One thread at a time.
class CGContext {
 public:
  // None where the memory is too small for `height` rows of `bytesPerRow` bytes, these for `width`
  // pixels, or a pixel has other than 8 bits a component.
  static std::optional<CGContext> make(std::span<std::uint8_t> data, std::size_t width,
                                       std::size_t height, std::size_t bitsPerComponent,
                                       std::size_t bytesPerRow, CGImageAlphaInfo bitmapInfo);

  // Coordinates of later drawing go through `transform` first.
  void concatenate(const CGAffineTransform& transform) {
    transform_ = transform.concatenating(transform_);
  }
  // Lays the image, scaled to fill `rect`, over what is there; what lies beyond the memory is cut
  // off. An error, with nothing drawn, under a transform that turns or shears.
  Result<Done> draw(const std::shared_ptr<const CGImage>& image, const CGRect& rect);

 private:
  explicit CGContext(PixelTarget target) : target_(target) {}

  PixelTarget target_;
  CGAffineTransform transform_;
};

}  // namespace kestrova::platform
