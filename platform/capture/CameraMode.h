#pragma once

#include <optional>
#include <span>

#include "platform/capture/CameraFrame.h"

namespace kestrova::platform {

// One way in which a device gives pictures.
struct CameraMode {
  PixelSize size;
  double framesPerSecond = 0;
  bool isJPEG = false;
  // Its place in the device's own list.
  std::size_t index = 0;
};

// For the live picture: 1280 x 720 at 30 frames a second or the nearest to it. None of none.
std::optional<CameraMode> previewMode(std::span<const CameraMode> modes);
// For a photograph: the most pixels, however slow, as a JPEG file where there is one at that size.
// None where the preview's mode is as good.
std::optional<CameraMode> photoMode(std::span<const CameraMode> modes, const CameraMode& preview);

}  // namespace kestrova::platform
