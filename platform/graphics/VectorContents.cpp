#include <algorithm>
#include <cmath>
#include <utility>

#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/ImageContents.h"

namespace kestrova::platform {

namespace {

// Parses anew for each size: such files are small, and a picture then outlives the application.
class VectorContents : public ImageContents {
 public:
  VectorContents(Data file, CGSize size) : file_(std::move(file)), size_(size) {}

  CGSize size() const override { return size_; }

  Result<std::shared_ptr<const CGImage>> image() const override { return render(size_); }

  Result<std::unique_ptr<PixelRows>> rows(CGSize size) const override {
    const auto image = render(size);
    if (!image) return image.error();
    return std::unique_ptr<PixelRows>(std::make_unique<BitmapRows>(image.value()));
  }

 private:
  Result<std::shared_ptr<const CGImage>> render(CGSize size) const {
    if (!QCoreApplication::instance()) {
      return graphicsError(GraphicsErrorCode::unavailable, "an SVG drawing needs an application");
    }
    const auto pixels = [](double length) {
      return static_cast<std::size_t>(
          std::clamp(std::round(length), 1.0, static_cast<double>(CGImage::kMaximumPixels)));
    };
    const auto image = CGImage::make(pixels(size.width), pixels(size.height));
    if (!image) return graphicsError(GraphicsErrorCode::tooLarge, "an SVG drawing at that size");
    std::ranges::fill(image->pixels(), 0U);
    QImage canvas(reinterpret_cast<uchar*>(image->pixels().data()),
                  static_cast<int>(image->width()), static_cast<int>(image->height()),
                  QImage::Format_ARGB32_Premultiplied);
    QSvgRenderer renderer(
        QByteArray::fromRawData(file_.view().data(), static_cast<qsizetype>(file_.size())));
    QPainter painter(&canvas);
    renderer.render(&painter);
    return std::shared_ptr<const CGImage>(image);
  }

  const Data file_;
  const CGSize size_;
};

}  // namespace

Result<std::shared_ptr<const ImageContents>> ImageContents::vector(Data file) {
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
    return graphicsError(GraphicsErrorCode::unavailable, "an SVG drawing needs an application");
  }
  const QSvgRenderer renderer(
      QByteArray::fromRawData(file.view().data(), static_cast<qsizetype>(file.size())));
  const auto size = renderer.defaultSize();
  if (!renderer.isValid() || size.isEmpty()) {
    return graphicsError(GraphicsErrorCode::unknownFormat, "not an SVG drawing");
  }
  return std::shared_ptr<const ImageContents>(std::make_shared<VectorContents>(
      std::move(file),
      CGSize{static_cast<double>(size.width()), static_cast<double>(size.height())}));
}

}  // namespace kestrova::platform
