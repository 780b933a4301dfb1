#pragma once

#include <optional>

#include "platform/graphics/UIImage.h"
#include "sdk/Platform.h"

namespace kestrova {

// The whole picture redrawn upright at another size in points, in its own scale. None where no
// pixel would be left or too many made, and where the picture does not decode.

// Width and height times `factor`.
std::optional<UIImage> resizedWithPercentage(const UIImage& image, double factor);
// `width` wide, the height in proportion and rounded up to a whole point.
std::optional<UIImage> resizedToWidth(const UIImage& image, double width);

}  // namespace kestrova
