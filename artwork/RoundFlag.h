#pragma once

#include <string>

namespace kestrova::artwork {

// The SVG drawing in `source`, a square flag behind a round mask, cut to the circle for renderers
// that know no masks: an SVG text of nothing but filled paths. Throws std::runtime_error where the
// file is missing or not such a drawing.
std::string roundFlag(const std::string& source);

}  // namespace kestrova::artwork
