#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// What is asked of a video device directly, without the media framework. Any thread.
struct V4L2Device {
  // True if the device gives pictures, unlike the nodes of codecs and metadata, or cannot be opened
  // now because it is busy or not permitted. Starts nothing and never waits.
  static bool isCamera(const std::filesystem::path& path);
  // True if the system has a camera.
  static bool isThere();
  // The system's cameras.
  static std::vector<std::filesystem::path> cameras();
  // Whether the path is a device's.
  static bool isDevice(const std::filesystem::path& path);
  // Whether it can be opened, and the error that says why not: not found, not permitted, busy, or
  // no camera.
  static Result<Done> check(const std::filesystem::path& path);

  static bool hasFlash(const std::filesystem::path& path);
  // The folder of the system's devices, for tests; /dev by default. Must outlive its use.
  static void setFolder(const char* path);

  // Lights the lamp of a device that has one until the token goes; null without one.
  static std::shared_ptr<const void> light(const std::filesystem::path& path);
};

}  // namespace kestrova::platform
