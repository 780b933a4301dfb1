#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/PixelRows.h"
#include "platform/graphics/UIImageOrientation.h"

namespace kestrova::platform {

// Memory that pictures are drawn into; owned by somebody else. Rows lie from the top, coordinates
// count from the top left corner in pixels.
struct PixelTarget {
  enum class Format {
    // As in a CGImage.
    premultiplied,
    // Bytes alpha, red, green, blue; alpha is written as full and otherwise ignored.
    noneSkipFirst,
  };

  std::uint8_t* memory;
  std::size_t width;
  std::size_t height;
  std::size_t bytesPerRow;
  Format format;

  // Lays a picture, turned upright, over what is there, scaled to fill `rect`. False where the
  // source is damaged; part of it may be drawn by then.
  [[nodiscard]] bool draw(PixelRows& source, UIImageOrientation orientation,
                          const CGRect& rect) const;
  // Lays one premultiplied pixel over the one at `pixel`.
  void blend(std::uint8_t* pixel, std::uint32_t over) const;
};

}  // namespace kestrova::platform
