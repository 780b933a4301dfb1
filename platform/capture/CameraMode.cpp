#include "platform/capture/CameraMode.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/graphics/CGImage.h"

namespace kestrova::platform {

namespace {

constexpr double kWidth = 1280;
constexpr double kHeight = 720;
constexpr double kRate = 30;
// Below this motion is no longer smooth.
constexpr double kSmooth = 24;

double pixels(const CameraMode& mode) {
  return double(mode.size.width) * double(mode.size.height);
}

// Smaller is better, the first that differs decides.
auto previewCost(const CameraMode& mode) {
  // As a factor, either way.
  const double size = std::abs(std::log(pixels(mode) / (kWidth * kHeight)));
  const double rate = std::abs(mode.framesPerSecond - kRate);
  const bool isSlow = mode.framesPerSecond < kSmooth;
  // A device that is slow at every size is used at about the right one.
  constexpr double kFarOff = 1.5;
  return std::tuple(size > kFarOff, isSlow, size, rate, mode.isJPEG);
}

auto photoCost(const CameraMode& mode) {
  return std::tuple(-pixels(mode), !mode.isJPEG, -mode.framesPerSecond);
}

bool isAllowed(const CameraMode& mode) {
  return CGImage::isAllowed(mode.size.width, mode.size.height);
}

template <typename Cost>
std::optional<CameraMode> best(std::span<const CameraMode> modes, Cost cost) {
  std::optional<CameraMode> found;
  for (const auto& mode : modes) {
    if (isAllowed(mode) && (!found || cost(mode) < cost(*found))) found = mode;
  }
  return found;
}

}  // namespace

std::optional<CameraMode> previewMode(std::span<const CameraMode> modes) {
  return best(modes, previewCost);
}

std::optional<CameraMode> photoMode(std::span<const CameraMode> modes, const CameraMode& preview) {
  const auto largest = best(modes, photoCost);
  return largest && pixels(*largest) > pixels(preview) ? largest : std::nullopt;
}

}  // namespace kestrova::platform
