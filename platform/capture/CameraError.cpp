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

std::string cameraAdvice(const NSError& error) {
  if (isCameraError(error, CameraErrorCode::notFound)) {
    return "No camera was found. Connect one and try again.";
  }
  if (isCameraError(error, CameraErrorCode::notPermitted)) {
    return "Camera access is off for this app. Turn it on in the system settings.";
  }
  if (isCameraError(error, CameraErrorCode::busy)) {
    return "Another app is using the camera. Close that app and try again.";
  }
  if (isCameraError(error, CameraErrorCode::disconnected)) {
    return "The camera was disconnected. Connect it and try again.";
  }
  return "We can’t get a picture from the camera. Check it and try again.";
}

}  // namespace kestrova::platform
