#include <algorithm>
#include <cmath>
#include <utility>

#include <QtCore/QXmlStreamReader>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include "platform/graphics/GraphicsError.h"
#include "platform/graphics/ImageContents.h"

namespace kestrova::platform {

namespace {

QByteArray bytes(const Data& file) {
  return QByteArray::fromRawData(file.view().data(), static_cast<qsizetype>(file.size()));
}

// Whether nothing but the file is read for the drawing, and each of its elements is drawn once. The
// library opens whatever path a picture or a style sheet names; copies of copies have no bounds.
bool standsAlone(const Data& file) {
  QXmlStreamReader reader(bytes(file));
  while (!reader.atEnd()) {
    const auto token = reader.readNext();
    const bool isElement = token == QXmlStreamReader::StartElement;
    if (isElement && (reader.name() == u"image" || reader.name() == u"use")) return false;
    if (token == QXmlStreamReader::ProcessingInstruction &&
        reader.processingInstructionTarget() == u"xml-stylesheet") {
      return false;
    }
  }
  return !reader.hasError();
}

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
    QSvgRenderer renderer(bytes(file_));
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
  if (!standsAlone(file)) {
    return graphicsError(GraphicsErrorCode::unknownFormat,
                         "not an SVG drawing, or one with pictures, copies or style sheets");
  }
  const QSvgRenderer renderer(bytes(file));
  const auto size = renderer.defaultSize();
  if (!renderer.isValid() || size.isEmpty()) {
    return graphicsError(GraphicsErrorCode::unknownFormat, "not an SVG drawing");
  }
  return std::shared_ptr<const ImageContents>(std::make_shared<VectorContents>(
      std::move(file),
      CGSize{static_cast<double>(size.width()), static_cast<double>(size.height())}));
}

}  // namespace kestrova::platform
