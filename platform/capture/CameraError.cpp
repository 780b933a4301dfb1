#include "platform/capture/CameraError.h"

namespace kestrova::platform {

namespace {

constexpr const char* kDomain = "Kestrova.Capture";

}  // namespace

NSError cameraError(CameraErrorCode code, std::string description) {
  return {kDomain, static_cast<int>(code), std::move(description)};
}

bool isCameraError(const NSError& error, CameraErrorCode code) {
  return error.domain == kDomain && error.code == static_cast<int>(code);
}

}  // namespace kestrova::platform
