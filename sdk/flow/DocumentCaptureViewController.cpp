#include "sdk/flow/DocumentCaptureViewController.h"

#include "platform/capture/CameraError.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIBindings.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/Animations.h"
#include "sdk/flow/DocumentPicture.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void DocumentCaptureViewController::bind(UIBindings& bindings) {
  CaptureViewController::bind(bindings);
  bindings.outlet("IDGIFCointainer", IDGIFCointainer);
}

void DocumentCaptureViewController::viewDidLoad() {
  CaptureViewController::viewDidLoad();
  addOberserver();
}

void DocumentCaptureViewController::viewWillAppear(bool animated) {
  CaptureViewController::viewWillAppear(animated);
  playIDGIF();
}

void DocumentCaptureViewController::viewWillDisappear(bool animated) {
  CaptureViewController::viewWillDisappear(animated);
  if (const auto container = IDGIFCointainer.lock()) removeSubviews(*container);
}

void DocumentCaptureViewController::takePhoto(const std::function<void()>& start) {
  if (isBusy()) return;
  beginAttempt();
  setBusy("Starting the camera");
  start();
  if (presentedViewController()) return;
  setIdle();
  constexpr auto kCamera = UIImagePickerControllerSourceType::camera;
  showNotice(UIImagePickerController::isSourceTypeAvailable(kCamera)
                 ? "We couldn’t open the camera. Close and start again."
                 : cameraAdvice(cameraError(CameraErrorCode::notFound, {})));
}

void DocumentCaptureViewController::addOberserver() {
  NotificationCenter::defaultCenter().addObserver<DocumentCaptureViewController>(
      shared(this),
      [](DocumentCaptureViewController& screen, const Notification&) {
        screen.mediaUI->setCameraOverlayView(nullptr);
      },
      kUserDidCaptureItem);
}

void DocumentCaptureViewController::playIDGIF() {
  if (const auto container = IDGIFCointainer.lock()) playGIF(animationName(), *container);
}

void DocumentCaptureViewController::imagePickerControllerDidCancel(
    UIImagePickerController& picker) {
  picker.dismiss(true, [weak = std::weak_ptr(shared(this))] {
    if (const auto alive = weak.lock()) alive->mediaUI->setCameraOverlayView(nullptr);
  });
}

void DocumentCaptureViewController::imagePickerControllerDidFinishPickingMediaWithInfo(
    UIImagePickerController& picker, const UIImagePickerControllerInfo& info) {
  NotificationCenter::defaultCenter().removeObserver(this, kUserDidCaptureItem);
  hasFailed_ = false;
  picker.dismiss(true, [weak = std::weak_ptr(shared(this))] {
    const auto alive = weak.lock();
    if (alive && !alive->hasFailed_) alive->showLoading();
  });
  const auto found = info.find(UIImagePickerControllerOriginalImage);
  const auto* const image = found == info.end() ? nullptr : std::any_cast<UIImage>(&found->second);
  if (!image) return;
  if (const auto url = storeDocumentPicture(*image, fileName())) {
    upload(*url);
  } else {
    hasFailed_ = true;
    hideLoading();
    recordingNotSaved();
    showNotSaved();
  }
}

// The next attempt begins as the first one did.
void DocumentCaptureViewController::recordingNotSaved() {
  mediaUI->setCameraOverlayView(nullptr);
  addOberserver();
}

void DocumentCaptureViewController::closeCamera() {
  if (presentedViewController() != mediaUI || mediaUI->isBeingDismissed()) return;
  mediaUI->dismiss(false);
  mediaUI->setCameraOverlayView(nullptr);
}

std::optional<DocumentCaptureViewController::Keys> DocumentCaptureViewController::keysOrError(
    std::string_view segue) {
  const char* const missing = !Kestrova::authentication_key ? "Auth key not initialized"
                              : !Kestrova::apiKey           ? "Api key not initialized"
                                                            : nullptr;
  if (!missing) return Keys{*Kestrova::apiKey, *Kestrova::authentication_key};
  print(missing);
  performSegue(segue, shared(this));
  return std::nullopt;
}

}  // namespace kestrova
