#pragma once

#include <memory>

#include "platform/foundation/Data.h"
#include "platform/foundation/Result.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/CGImage.h"
#include "platform/graphics/PixelRows.h"
#include "platform/graphics/UIImageOrientation.h"

namespace kestrova::platform {

// Where a picture's pixels come from. Immutable as seen from outside; any thread.
class ImageContents {
 public:
  // A PNG or JPEG file, kept as it is until pixels are needed. Errors are those of the file's head.
  static Result<std::shared_ptr<const ImageContents>> encoded(Data file);
  // A drawing in SVG. An error without a QGuiApplication, for files that are none, for such without
  // a size, and for such that refer to other files or draw an element again.
  static Result<std::shared_ptr<const ImageContents>> vector(Data file);
  static std::shared_ptr<const ImageContents> bitmap(std::shared_ptr<const CGImage> image);

  ImageContents() = default;
  ImageContents(const ImageContents&) = delete;
  ImageContents& operator=(const ImageContents&) = delete;
  virtual ~ImageContents() = default;

  // What is in memory already; null for files and drawings.
  virtual std::shared_ptr<const CGImage> bitmap() const { return nullptr; }
  // In pixels; of a drawing the size it states.
  virtual CGSize size() const = 0;
  virtual UIImageOrientation orientation() const { return UIImageOrientation::up; }
  virtual Result<std::shared_ptr<const CGImage>> image() const = 0;
  // For drawing at a size in pixels: a drawing is made for it, other contents come as they are.
  virtual Result<std::unique_ptr<PixelRows>> rows(CGSize size) const = 0;
};

}  // namespace kestrova::platform
