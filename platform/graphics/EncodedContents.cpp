#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/ImageContents.h"
#include "platform/graphics/JPEGReader.h"
#include "platform/graphics/PNGReader.h"

namespace kestrova::platform {

namespace {

using ImageResult = Result<std::shared_ptr<const CGImage>>;

ImageResult decodeJPEG(std::string_view file) {
  const auto reader = JPEGReader::open(file);
  if (!reader) return reader.error();
  auto& rows = *reader.value();
  const auto image = CGImage::make(rows.width(), rows.height());
  const auto profile = rows.colorProfile();
  for (std::size_t y = 0; y < image->height(); ++y) {
    const auto* const row = rows.next();
    if (!row) return graphicsError(GraphicsErrorCode::damaged, "a damaged JPEG file");
    std::copy_n(row, image->width(), image->row(y).begin());
    if (profile) profile->convert(image->row(y));
  }
  return std::shared_ptr<const CGImage>(image);
}

// Keeps the bitmap once somebody has asked for it.
class EncodedContents : public ImageContents {
 public:
  EncodedContents(Data file, CGSize size, UIImageOrientation orientation, bool isJPEG)
      : file_(std::move(file)), size_(size), orientation_(orientation), isJPEG_(isJPEG) {}

  CGSize size() const override { return size_; }
  UIImageOrientation orientation() const override { return orientation_; }

  ImageResult image() const override {
    const std::lock_guard lock(mutex_);
    if (!image_) image_ = isJPEG_ ? decodeJPEG(file_.view()) : PNGReader::decode(file_.view());
    return *image_;
  }

  Result<std::unique_ptr<PixelRows>> rows(CGSize /*size*/) const override {
    if (isJPEG_ && !isDecoded()) {
      auto reader = JPEGReader::open(file_.view());
      if (!reader) return reader.error();
      return std::unique_ptr<PixelRows>(std::move(reader).value());
    }
    const auto bitmap = image();
    if (!bitmap) return bitmap.error();
    return std::unique_ptr<PixelRows>(std::make_unique<BitmapRows>(bitmap.value()));
  }

 private:
  bool isDecoded() const {
    const std::lock_guard lock(mutex_);
    return image_.has_value();
  }

  const Data file_;
  const CGSize size_;
  const UIImageOrientation orientation_;
  const bool isJPEG_;
  mutable std::mutex mutex_;
  mutable std::optional<ImageResult> image_;
};

CGSize pixels(std::size_t width, std::size_t height) {
  return {static_cast<double>(width), static_cast<double>(height)};
}

}  // namespace

Result<std::shared_ptr<const ImageContents>> ImageContents::encoded(Data file) {
  using Contents = std::shared_ptr<const ImageContents>;
  if (PNGReader::recognises(file.view())) {
    const auto size = PNGReader::size(file.view());
    if (!size) return size.error();
    return Contents(std::make_shared<EncodedContents>(
        std::move(file), pixels(size.value().width, size.value().height), UIImageOrientation::up,
        false));
  }
  if (JPEGReader::recognises(file.view())) {
    const auto opened = JPEGReader::open(file.view());
    if (!opened) return opened.error();
    const auto size = pixels(opened.value()->width(), opened.value()->height());
    const auto orientation = opened.value()->orientation();
    return Contents(std::make_shared<EncodedContents>(std::move(file), size, orientation, true));
  }
  return graphicsError(GraphicsErrorCode::unknownFormat, "neither a PNG nor a JPEG file");
}

}  // namespace kestrova::platform
