#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

class CameraSource;

// Which cameras the process has. A host sets it before the first capture; a later one counts from
// the next capture on, and forgets that access was granted. Any thread.
struct KESTROVA_EXPORT CameraConfiguration {
  using Maker = std::function<std::unique_ptr<CameraSource>()>;

  // A video device (/dev/video0), or what stands for a camera: a picture (PNG, JPEG), a folder of
  // pictures, which are shown half a second each, or a video file. Empty for a device of the
  // system's. A position without a camera uses the other one's.
  std::filesystem::path front;
  std::filesystem::path rear;
  // A camera of the host's own; goes before the path.
  Maker frontSource;
  Maker rearSource;

  static void set(CameraConfiguration configuration);
  static CameraConfiguration current();
  // The camera that a path stands for; one that is not there fails when it is opened.
  static std::unique_ptr<CameraSource> source(const std::filesystem::path& path);
};

}  // namespace kestrova::platform
