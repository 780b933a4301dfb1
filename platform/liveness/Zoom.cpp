#include "platform/liveness/Zoom.h"

#include <utility>

#include "platform/liveness/LivenessEngine.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

Zoom& Zoom::sdk() {
  static Zoom instance;
  return instance;
}

void Zoom::preload() {
  LivenessEngine::current()->preload();
}

void Zoom::setFacemapEncryptionKey(const std::string& publicKey) {
  LivenessEngine::current()->setFacemapEncryptionKey(publicKey);
}

void Zoom::initialize(const std::string& appToken, std::function<void(bool)> completion) {
  LivenessEngine::current()->initialize(appToken, std::move(completion));
}

ZoomSDKStatus Zoom::getStatus() const {
  return LivenessEngine::current()->status();
}

void Zoom::setCustomization(const ZoomCustomization& customization) {
  customization_ = customization;
}

std::shared_ptr<UIViewController> Zoom::createVerificationVC(
    std::weak_ptr<ZoomVerificationDelegate> delegate) {
  return LivenessEngine::current()->makeCaptureScreen(customization_, auditTrailType,
                                                      std::move(delegate));
}

}  // namespace kestrova::platform
