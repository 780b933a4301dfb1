#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

// A bitmap: rows from the top, each pixel a word 0xAARRGGBB of sRGB with the colours premultiplied
// by alpha. That is what the screen draws fastest; colours under a small alpha lose precision, as
// in any premultiplied bitmap. Shared as a pointer to const, and then usable on any thread.
class KESTROVA_EXPORT CGImage {
 public:
  // No bitmap, decoded picture or drawing context has more pixels; in memory that is 200 MB. Enough
  // for the pictures of 48-megapixel cameras.
  static constexpr std::size_t kMaximumPixels = 50'000'000;
  static bool isAllowed(std::size_t width, std::size_t height);

  // Pixels of any value, to be written through row(); null for a size that is empty or not allowed.
  static std::shared_ptr<CGImage> make(std::size_t width, std::size_t height);

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::span<std::uint32_t> row(std::size_t y) { return {&pixels_[y * width_], width_}; }
  std::span<const std::uint32_t> row(std::size_t y) const { return {&pixels_[y * width_], width_}; }
  std::span<std::uint32_t> pixels() { return {pixels_.get(), width_ * height_}; }
  std::span<const std::uint32_t> pixels() const { return {pixels_.get(), width_ * height_}; }

  // Whether every pixel's alpha is full; looks at them all.
  bool isOpaque() const;

 private:
  CGImage(std::size_t width, std::size_t height)
      : width_(width),
        height_(height),
        pixels_(std::make_unique_for_overwrite<std::uint32_t[]>(width * height)) {}

  std::size_t width_;
  std::size_t height_;
  std::unique_ptr<std::uint32_t[]> pixels_;
};

}  // namespace kestrova::platform
