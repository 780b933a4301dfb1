#pragma once

#include <string_view>

#include "platform/graphics/UIImageOrientation.h"

namespace kestrova::platform {

// The orientation that the EXIF block of a JPEG file (its APP1 segment, from "Exif" on) states;
// `up` where it states none that makes sense.
UIImageOrientation exifOrientation(std::string_view segment);

}  // namespace kestrova::platform
