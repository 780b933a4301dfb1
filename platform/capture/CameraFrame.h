#pragma once

#include <cstddef>
#include <memory>

#include "platform/graphics/CGImage.h"
#include "platform/graphics/UIImage.h"

namespace kestrova::platform {

struct PixelSize {
  std::size_t width = 0;
  std::size_t height = 0;

  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

// The largest size of the same shape that fits into `room`, no side below 1.
PixelSize fitting(PixelSize size, PixelSize room);

// The longer side of a frame where nobody asks for a size, in pixels.
inline constexpr std::size_t kLargestFrameSide = 1280;
// That of a frame of a camera: as large as fits into the room, if that is given.
PixelSize frameSize(PixelSize camera, PixelSize room);

// What a camera saw at a moment: upright, opaque, not mirrored.
struct CameraFrame {
  std::shared_ptr<const CGImage> image;
  // Seconds since the camera was started.
  double time = 0;
};

// A photograph at its full size, and the same made for the screen.
struct CameraPhoto {
  UIImage image;
  std::shared_ptr<const CGImage> preview;
};

}  // namespace kestrova::platform
