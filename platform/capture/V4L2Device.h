#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// What is asked of a video device directly, without the media framework. Any thread.
struct V4L2Device {
  // Whether the system has video devices at all, cameras or not. Opens nothing.
  static bool isThere();
  // The system's devices that give pictures, those that cannot be opened now included.
  static std::vector<std::filesystem::path> cameras();
  // Whether the path is a device's.
  static bool isDevice(const std::filesystem::path& path);
  // Whether it can be opened, and the error that says why not: not found, not permitted, busy, or
  // no camera.
  static Result<Done> check(const std::filesystem::path& path);

  static bool hasFlash(const std::filesystem::path& path);
  // Lights the lamp of a device that has one until the token goes; null without one.
  static std::shared_ptr<const void> light(const std::filesystem::path& path);
};

}  // namespace kestrova::platform
