#include "platform/capture/CameraFrame.h"

#include <algorithm>
#include <cmath>

namespace kestrova::platform {

namespace {

PixelSize scaled(PixelSize size, double by) {
  const auto side = [by](std::size_t length) {
    return std::max<std::size_t>(1, std::size_t(std::lround(double(length) * by)));
  };
  return {side(size.width), side(size.height)};
}

double share(PixelSize size, PixelSize room) {
  return std::min(double(room.width) / double(size.width),
                  double(room.height) / double(size.height));
}

}  // namespace

PixelSize fitting(PixelSize size, PixelSize room) {
  return scaled(size, share(size, room));
}

PixelSize frameSize(PixelSize camera, PixelSize room) {
  if (camera.width == 0 || camera.height == 0) return {};
  if (room != PixelSize{}) return fitting(camera, room);
  return scaled(camera, std::min(1.0, share(camera, {kLargestFrameSide, kLargestFrameSide})));
}

}  // namespace kestrova::platform
