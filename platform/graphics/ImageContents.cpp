#include "platform/graphics/ImageContents.h"

#include <utility>

namespace kestrova::platform {

namespace {

class BitmapContents : public ImageContents {
 public:
  explicit BitmapContents(std::shared_ptr<const CGImage> image) : image_(std::move(image)) {}

  std::shared_ptr<const CGImage> bitmap() const override { return image_; }
  CGSize size() const override {
    return {static_cast<double>(image_->width()), static_cast<double>(image_->height())};
  }
  Result<std::shared_ptr<const CGImage>> image() const override { return image_; }
  Result<std::unique_ptr<PixelRows>> rows(CGSize /*size*/) const override {
    return std::unique_ptr<PixelRows>(std::make_unique<BitmapRows>(image_));
  }

 private:
  std::shared_ptr<const CGImage> image_;
};

}  // namespace

std::shared_ptr<const ImageContents> ImageContents::bitmap(std::shared_ptr<const CGImage> image) {
  return std::make_shared<BitmapContents>(std::move(image));
}

}  // namespace kestrova::platform
