#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Data.h"
#include "platform/foundation/Export.h"
#include "platform/foundation/Result.h"
#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/CGImage.h"
#include "platform/graphics/UIImageOrientation.h"

namespace kestrova::platform {

class ImageContents;
class UIGraphicsImageContext;

// A picture, or several that are shown in turn. Copies share everything. A picture made from a PNG
// or JPEG file keeps the file's bytes and is decoded where pixels are needed, so that a damaged
// file may show only then. Any thread; SVG drawings on the main thread alone.
class KESTROVA_EXPORT UIImage {
 public:
  // `scale` is the pixels of a point. `image` may not be null.
  explicit UIImage(std::shared_ptr<const CGImage> image, double scale = 1,
                   UIImageOrientation orientation = UIImageOrientation::up);
  // A PNG or JPEG file, scale 1, upright by the orientation in its EXIF block.
  static Result<UIImage> make(Data data);
  // The resource `name` of type png, jpg, jpeg or svg, in this order; a drawing in SVG stays sharp
  // at any size. None where the bundle has none, the file does not decode, or it is an SVG file in
  // a process without a QGuiApplication, or with an image, use or xml-stylesheet.
  static std::optional<UIImage> named(std::string_view name, const Bundle& bundle);
  // Pictures that are shown one after the other for the same time each, in `duration` seconds all
  // of them; size and pixels are those of the first. None for an empty list.
  static std::optional<UIImage> animatedImage(std::vector<UIImage> images, double duration);

  // Of the upright picture, in points.
  CGSize size() const;
  double scale() const;
  UIImageOrientation imageOrientation() const;
  // The pixels as stored, the orientation not applied; decoded at first and kept. An error where
  // the file is damaged.
  Result<std::shared_ptr<const CGImage>> cgImage() const;
  // Of an animated picture; else empty and 0.
  const std::vector<UIImage>& images() const;
  double duration() const;

  // Draws the whole picture upright, scaled to fill `rect`, over what is there. A JPEG file that is
  // not decoded is read row by row. After an error the context has no picture to give.
  Result<Done> draw(const CGRect& rect, UIGraphicsImageContext& context) const;

  // The pixels of an upright picture that is in memory; null of any other.
  std::shared_ptr<const CGImage> uprightBitmap() const;
  // The upright picture at a size in pixels, of which the last one is kept: for screens, which draw
  // it over and over.
  Result<std::shared_ptr<const CGImage>> rendition(std::size_t width, std::size_t height) const;

 private:
  friend class UIGraphicsImageContext;
  struct State;

  // `size` in points of what `contents` hold upright.
  UIImage(std::shared_ptr<const ImageContents> contents, CGSize size, double scale,
          UIImageOrientation orientation);

  std::shared_ptr<State> state_;
};

// The picture, upright, as a PNG file: RGB where it is opaque, else RGBA.
Result<Data> UIImagePNGRepresentation(const UIImage& image);

}  // namespace kestrova::platform
