#include "sdk/flow/ScanIDInstructionsViewController.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UILabel.h"
#include "sdk/backend/API.h"
#include "sdk/flow/NextStep.h"
#include "sdk/flow/Segues.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/media/VideoPhotoCaptureHelper.h"

namespace kestrova {

void ScanIDInstructionsViewController::bind(UIBindings& bindings) {
  DocumentCaptureViewController::bind(bindings);
  bindings.outlet("headingLabel", headingLabel);
  bindings.action("takePhotoOfFrontDocument:", shared(this),
                  &ScanIDInstructionsViewController::takePhotoOfFrontDocument);
}

void ScanIDInstructionsViewController::viewWillAppear(bool animated) {
  DocumentCaptureViewController::viewWillAppear(animated);
  const auto heading = headingLabel.lock();
  if (heading && isPassport()) heading->setText("Take a photo of the photo page");
}

void ScanIDInstructionsViewController::takePhotoOfFrontDocument(const std::shared_ptr<UIControl>&) {
  takePhoto([this] { VideoPhotoCaptureHelper::startScanFrontDocument(shared(this), mediaUI); });
}

void ScanIDInstructionsViewController::uploadFrontPicDocument(const std::filesystem::path& url) {
  const auto keys = keysOrError(Segues::showErrorScreenfromScanID);
  if (!keys) return;
  VerificationStart::uploadBegan(*this);
  API::recordAuthenticationDocumentPicFRONT(
      url, keys->apiKey, keys->authentication_key,
      [weak = std::weak_ptr(shared(this)), keys = *keys](const JSONDictionary&) {
        recordStepInBackend(keys.apiKey, keys.authentication_key);
        const auto alive = weak.lock();
        if (!alive) return;
        alive->performSegue(
            alive->isPassport() ? Segues::showCongratsScreen : Segues::scanBackSideOfDocument,
            alive);
      },
      uploadFailureHandler());
}

void ScanIDInstructionsViewController::recordStepInBackend(const std::string& apiKey,
                                                           const std::string& authentication_key) {
  DispatchQueue::global(DispatchQoS::background).async([apiKey, authentication_key] {
    API::checkAuthenticationDocumentPicFRONT(
        apiKey, authentication_key, [](const JSONDictionary& answer) {
          print("checkAuthenticationDocumentPicFRONT response: " + description(answer));
          storeNextStep(answer);
        });
  });
}

}  // namespace kestrova
