#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "artwork/Colors.h"

namespace kestrova::artwork {

// At most 256 colours: even ramps between the colours that meet at an edge, so that edges stay
// smooth and areas stay flat.
class RampPalette {
 public:
  explicit RampPalette(const std::vector<std::pair<Color, Color>>& edges);

  const std::vector<Color>& colors() const { return colors_; }
  // Of the nearest colour.
  std::uint8_t index(Color color);

 private:
  std::vector<Color> colors_;
  std::unordered_map<Color, std::uint8_t> found_;
};

}  // namespace kestrova::artwork
