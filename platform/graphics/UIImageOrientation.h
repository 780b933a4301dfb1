#pragma once

namespace kestrova::platform {

// How stored pixels are turned to be upright: `right`, for one, by a quarter turn clockwise. The
// mirrored ones are flipped left to right before the turn.
enum class UIImageOrientation {
  up = 0,
  down = 1,
  left = 2,
  right = 3,
  upMirrored = 4,
  downMirrored = 5,
  leftMirrored = 6,
  rightMirrored = 7,
};

// Whether width and height of the upright picture are those of the pixels swapped.
inline bool swapsSides(UIImageOrientation orientation) {
  return (static_cast<unsigned>(orientation) & 2U) != 0;
}

}  // namespace kestrova::platform
