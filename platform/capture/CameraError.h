#pragma once

#include <string>

#include "platform/foundation/NSError.h"

namespace kestrova::platform {

enum class CameraErrorCode {
  // There is no such device or file.
  notFound = 1,
  // The system does not let this user have it.
  notPermitted,
  // Somebody else has it.
  busy,
  // It was there and is gone.
  disconnected,
  // It gives nothing that can be shown.
  unsupported,
  // It gives nothing in time, or something else went wrong.
  failed
};

// Domain "Kestrova.Capture".
NSError cameraError(CameraErrorCode code, std::string description);
bool isCameraError(const NSError& error, CameraErrorCode code);

// Tells the user what to do about the error, to be shown on screen.
std::string cameraAdvice(const NSError& error);

}  // namespace kestrova::platform
