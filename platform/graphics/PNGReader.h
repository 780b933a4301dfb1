#pragma once

#include <memory>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/graphics/CGImage.h"

namespace kestrova::platform {

// Decodes PNG files of every colour type and depth, interlaced ones too. Files that break off or
// fail a checksum are damaged.
struct PNGReader {
  struct Size {
    std::size_t width;
    std::size_t height;
  };

  static bool recognises(std::string_view data) { return data.starts_with("\x89PNG\r\n\x1a\n"); }
  // From the file's head alone. An error too where the data is too short for that many pixels,
  // however well they compress.
  static Result<Size> size(std::string_view data);
  static Result<std::shared_ptr<const CGImage>> decode(std::string_view data);
};

}  // namespace kestrova::platform
