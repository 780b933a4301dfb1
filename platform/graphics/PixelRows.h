#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/graphics/CGImage.h"
#include "platform/graphics/ColorProfile.h"

namespace kestrova::platform {

// The rows of a picture, each once and from the top: how pictures are read without a bitmap of the
// whole.
class PixelRows {
 public:
  PixelRows() = default;
  PixelRows(const PixelRows&) = delete;
  PixelRows& operator=(const PixelRows&) = delete;
  virtual ~PixelRows() = default;

  virtual std::size_t width() const = 0;
  virtual std::size_t height() const = 0;
  // `width()` pixels as in a CGImage, valid until the next call. Null where the picture is damaged,
  // and from then on.
  virtual const std::uint32_t* next() = 0;
  // The conversion that the pixels of next() still need; null for sRGB. Takes milliseconds to make.
  // Left to the caller, as converting after scaling down costs a fraction of converting every row.
  virtual std::shared_ptr<const ColorProfile> colorProfile() { return nullptr; }
};

class BitmapRows : public PixelRows {
 public:
  explicit BitmapRows(std::shared_ptr<const CGImage> image) : image_(std::move(image)) {}

  std::size_t width() const override { return image_->width(); }
  std::size_t height() const override { return image_->height(); }
  const std::uint32_t* next() override {
    return y_ < image_->height() ? image_->row(y_++).data() : nullptr;
  }

 private:
  std::shared_ptr<const CGImage> image_;
  std::size_t y_ = 0;
};

}  // namespace kestrova::platform
