#include "sdk/flow/ScanBacksideViewController.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIBindings.h"
#include "sdk/backend/API.h"
#include "sdk/flow/NextStep.h"
#include "sdk/flow/Segues.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/media/VideoPhotoCaptureHelper.h"

namespace kestrova {

void ScanBacksideViewController::bind(UIBindings& bindings) {
  DocumentCaptureViewController::bind(bindings);
  bindings.action("takePhotoOfBacksideDocument:", shared(this),
                  &ScanBacksideViewController::takePhotoOfBacksideDocument);
}

void ScanBacksideViewController::takePhotoOfBacksideDocument(const std::shared_ptr<UIControl>&) {
  takePhoto([this] { VideoPhotoCaptureHelper::startScanBackDocument(shared(this), mediaUI); });
}

void ScanBacksideViewController::uploadBackSideScan(const std::filesystem::path& url) {
  const auto keys = keysOrError(Segues::showErrorScreenfromScanIDBackside);
  if (!keys) return;
  VerificationStart::uploadBegan(*this);
  API::recordAuthenticationDocumentPicBACK(
      url, keys->apiKey, keys->authentication_key,
      [weak = std::weak_ptr(shared(this)), keys = *keys](const JSONDictionary&) {
        if (const auto alive = weak.lock()) {
          alive->performSegue(Segues::showFinalCongratsAfterBackSide, alive);
        }
        recordStepInBackend(keys.apiKey, keys.authentication_key);
      },
      uploadFailureHandler());
}

void ScanBacksideViewController::recordStepInBackend(const std::string& apiKey,
                                                     const std::string& authentication_key) {
  DispatchQueue::global(DispatchQoS::background).async([apiKey, authentication_key] {
    API::checkAuthenticationDocumentPicBACK(
        apiKey, authentication_key, [](const JSONDictionary& answer) {
          print("checkAuthenticationDocumentPicBACK response: " + description(answer));
          storeNextStep(answer);
        });
  });
}

}  // namespace kestrova
