#include "platform/graphics/UIImage.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/foundation/FileManager.h"
#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/ImageContents.h"
#include "platform/graphics/PNGWriter.h"
#include "platform/graphics/PixelTarget.h"
#include "platform/graphics/UIGraphicsImageContext.h"

namespace kestrova::platform {

struct UIImage::State {
  std::shared_ptr<const ImageContents> contents;
  CGSize size;
  double scale = 1;
  UIImageOrientation orientation = UIImageOrientation::up;
  std::vector<UIImage> images;
  double duration = 0;

  std::mutex mutex;
  // The rendition made last.
  std::shared_ptr<const CGImage> rendition;
};

namespace {

// In points, of the upright picture.
CGSize uprightSize(const ImageContents& contents, double scale, UIImageOrientation orientation) {
  const auto pixels = contents.size();
  const CGSize size{pixels.width / scale, pixels.height / scale};
  return swapsSides(orientation) ? CGSize{size.height, size.width} : size;
}

Result<Done> drawContents(const ImageContents& contents, UIImageOrientation orientation,
                          const CGRect& rect, CGImage& canvas) {
  // Written so that what is not a number is no place either.
  if (!(rect.size.width > 0 && rect.size.height > 0)) return Done{};
  const auto size = swapsSides(orientation) ? CGSize{rect.size.height, rect.size.width} : rect.size;
  const auto rows = contents.rows(size);
  if (!rows) return rows.error();
  const PixelTarget target{reinterpret_cast<std::uint8_t*>(canvas.pixels().data()), canvas.width(),
                           canvas.height(), canvas.width() * sizeof(std::uint32_t),
                           PixelTarget::Format::premultiplied};
  if (!target.draw(*rows.value(), orientation, rect)) {
    return graphicsError(GraphicsErrorCode::damaged, "a damaged picture");
  }
  return Done{};
}

}  // namespace

UIImage::UIImage(std::shared_ptr<const ImageContents> contents, CGSize size, double scale,
                 UIImageOrientation orientation)
    : state_(std::make_shared<State>()) {
  state_->contents = std::move(contents);
  state_->size = size;
  state_->scale = scale;
  state_->orientation = orientation;
}

UIImage::UIImage(std::shared_ptr<const CGImage> image, double scale, UIImageOrientation orientation)
    : state_(std::make_shared<State>()) {
  state_->contents = ImageContents::bitmap(std::move(image));
  state_->size = uprightSize(*state_->contents, scale, orientation);
  state_->scale = scale;
  state_->orientation = orientation;
}

Result<UIImage> UIImage::make(Data data) {
  auto contents = ImageContents::encoded(std::move(data));
  if (!contents) return contents.error();
  const auto orientation = contents.value()->orientation();
  const auto size = uprightSize(*contents.value(), 1, orientation);
  return UIImage(std::move(contents).value(), size, 1, orientation);
}

std::optional<UIImage> UIImage::named(std::string_view name, const Bundle& bundle) {
  for (const auto* const type : {"png", "jpg", "jpeg", "svg"}) {
    const auto path = bundle.path(name, type);
    if (!path) continue;
    auto data = FileManager::contents(*path);
    if (!data) return std::nullopt;
    auto contents = std::string_view(type) == "svg"
                        ? ImageContents::vector(std::move(data).value())
                        : ImageContents::encoded(std::move(data).value());
    if (!contents) return std::nullopt;
    const auto orientation = contents.value()->orientation();
    const auto size = uprightSize(*contents.value(), 1, orientation);
    return UIImage(std::move(contents).value(), size, 1, orientation);
  }
  return std::nullopt;
}

std::optional<UIImage> UIImage::animatedImage(std::vector<UIImage> images, double duration) {
  if (images.empty()) return std::nullopt;
  const auto& first = *images.front().state_;
  UIImage image(first.contents, first.size, first.scale, first.orientation);
  image.state_->images = std::move(images);
  image.state_->duration = duration;
  return image;
}

CGSize UIImage::size() const {
  return state_->size;
}

double UIImage::scale() const {
  return state_->scale;
}

UIImageOrientation UIImage::imageOrientation() const {
  return state_->orientation;
}

Result<std::shared_ptr<const CGImage>> UIImage::cgImage() const {
  return state_->contents->image();
}

const std::vector<UIImage>& UIImage::images() const {
  return state_->images;
}

double UIImage::duration() const {
  return state_->duration;
}

Result<Done> UIImage::draw(const CGRect& rect, UIGraphicsImageContext& context) const {
  if (!context.image_) {
    return graphicsError(GraphicsErrorCode::unavailable, "the drawing context has ended");
  }
  const double x = static_cast<double>(context.image_->width()) / context.size_.width;
  const double y = static_cast<double>(context.image_->height()) / context.size_.height;
  const CGRect pixels{{rect.origin.x * x, rect.origin.y * y},
                      {rect.size.width * x, rect.size.height * y}};
  auto drawn = drawContents(*state_->contents, state_->orientation, pixels, *context.image_);
  if (!drawn) context.image_ = nullptr;
  return drawn;
}

std::shared_ptr<const CGImage> UIImage::uprightBitmap() const {
  const bool isUpright = state_->orientation == UIImageOrientation::up;
  return isUpright ? state_->contents->bitmap() : nullptr;
}

Result<std::shared_ptr<const CGImage>> UIImage::rendition(std::size_t width,
                                                          std::size_t height) const {
  if (auto bitmap = uprightBitmap();
      bitmap && bitmap->width() == width && bitmap->height() == height) {
    return bitmap;
  }
  const std::lock_guard lock(state_->mutex);
  auto& kept = state_->rendition;
  if (kept && kept->width() == width && kept->height() == height) return kept;
  const auto canvas = CGImage::make(width, height);
  if (!canvas) return graphicsError(GraphicsErrorCode::tooLarge, "a picture at that size");
  std::ranges::fill(canvas->pixels(), 0U);
  const auto drawn =
      drawContents(*state_->contents, state_->orientation,
                   {{}, {static_cast<double>(width), static_cast<double>(height)}}, *canvas);
  if (!drawn) return drawn.error();
  kept = canvas;
  return kept;
}

Result<Data> UIImagePNGRepresentation(const UIImage& image) {
  auto bitmap = image.cgImage();
  if (bitmap && image.imageOrientation() != UIImageOrientation::up) {
    auto width = bitmap.value()->width();
    auto height = bitmap.value()->height();
    if (swapsSides(image.imageOrientation())) std::swap(width, height);
    bitmap = image.rendition(width, height);
  }
  if (!bitmap) return bitmap.error();
  return encodePNG(*bitmap.value());
}

}  // namespace kestrova::platform
