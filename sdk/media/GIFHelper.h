#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/foundation/Data.h"
#include "platform/graphics/CGImageSource.h"
#include "platform/graphics/UIImage.h"
#include "sdk/Platform.h"

namespace kestrova {

// Animated instruction pictures out of GIF files. Frames are shown for 0.3 of their stored delay:
// a unit of delay is 1/300 s when a file is read and 1/1000 s when it is played.
struct UIImageExtensions {
  // The GIF file of that name in the SDK's bundle. None, with a line that names it, where it is
  // missing or cannot be read, else as below.
  static std::optional<UIImage> gifImageWithName(std::string_view name);
  // None, with a line, for what is no GIF file.
  static std::optional<UIImage> gifImageWithData(Data data);
  // Decodes every frame; one that is damaged is left out together with its delay. None where no
  // frame is left, and, with a line, for delays that would take more than a million entries.
  static std::optional<UIImage> animatedImageWithSource(CGImageSource& source);

  // In seconds, never below 0.1, which is also what a frame without a delay has.
  static double delayForImageAtIndex(std::size_t index, const CGImageSource& source);
  // The greatest common divisor by Euclid's algorithm, negative for some negative numbers; of one
  // number that number, of none 0.
  static std::int64_t gcdForPair(std::optional<std::int64_t> a, std::optional<std::int64_t> b);
  // Of an empty list 1.
  static std::int64_t gcdForArray(const std::vector<std::int64_t>& array);
};

}  // namespace kestrova
