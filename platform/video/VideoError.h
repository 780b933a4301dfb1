#pragma once

#include <string>

#include "platform/foundation/NSError.h"

namespace kestrova::platform {

enum class VideoErrorCode { unavailable = 1, unsupported, cannotWrite };

// Domain "Kestrova.Video".
NSError videoError(VideoErrorCode code, std::string description);

}  // namespace kestrova::platform
