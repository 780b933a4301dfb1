#pragma once

#include <memory>
#include <optional>

#include "platform/foundation/Result.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/UIImage.h"

namespace kestrova::platform {

// An offscreen drawing context that becomes a picture; it ends with the object. Coordinates count
// from the upper left corner in points. One thread at a time.
class UIGraphicsImageContext {
 public:
  // `size` in points, `scale` in pixels of a point. The pixels are rounded to whole ones, and the
  // points stretch over all of them. Transparent at first, or black where `opaque`. None for a size
  // without pixels or with more than a CGImage may have.
  static std::optional<UIGraphicsImageContext> begin(CGSize size, bool opaque, double scale);

  // What is drawn, in the size and scale of the context; the context is empty then. None after a
  // picture could not be drawn whole.
  std::optional<UIImage> takeImage();

 private:
  friend class UIImage;
  UIGraphicsImageContext(std::shared_ptr<CGImage> image, CGSize size, double scale)
      : image_(std::move(image)), size_(size), scale_(scale) {}

  // Null once the picture is taken or spoilt.
  std::shared_ptr<CGImage> image_;
  CGSize size_;
  double scale_;
};

}  // namespace kestrova::platform
