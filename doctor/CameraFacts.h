#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrova::doctor {

struct CameraFormat {
  // Four characters, as the kernel names it.
  std::string code;
  // The largest size, pixels, and how many pictures a second it comes with there; 0 where the
  // device does not say.
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  double perSecond = 0;
};

// What a video device says of itself.
struct CameraFacts {
  // Why it could not be opened, of errno; 0 where it could.
  int error = 0;
  // Not a metadata node, an encoder or a tuner.
  bool givesPictures = false;
  std::string name;
  std::vector<CameraFormat> formats;
};

// Asks the device without starting it.
CameraFacts cameraFacts(const std::filesystem::path& device);

}  // namespace kestrova::doctor
