#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Result.h"
#include "platform/graphics/CGImage.h"

namespace kestrova::platform {

// A PNG file of the bitmap: 8 bits a channel, RGB where every pixel is opaque, else RGBA. Written
// for speed at the size of the library's default: all row filters, run lengths as the only matches.
Result<Data> encodePNG(const CGImage& image);

}  // namespace kestrova::platform
