#pragma once

#include <string>
#include <utility>

#include "platform/foundation/NSError.h"

namespace kestrova::platform {

inline constexpr auto kGraphicsErrorDomain = "GraphicsErrorDomain";

enum class GraphicsErrorCode {
  // Not a file of a known kind, or its head is broken.
  unknownFormat = 1,
  // Begins well and then breaks off or makes no sense.
  damaged,
  // Beyond what is stated as maximum.
  tooLarge,
  // Needs what this process lacks.
  unavailable,
  alreadyRegistered,
};

inline NSError graphicsError(GraphicsErrorCode code, std::string description) {
  return {kGraphicsErrorDomain, static_cast<int>(code), std::move(description)};
}

}  // namespace kestrova::platform
