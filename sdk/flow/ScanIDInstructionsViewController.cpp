#include "sdk/flow/ScanIDInstructionsViewController.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/flow/Animations.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void ScanIDInstructionsViewController::bind(UIBindings& bindings) {
  bindings.outlet("IDGIFCointainer", IDGIFCointainer);
  bindings.outlet("loadingView", loadingView);
  bindings.outlet("spinner", spinner);
  bindings.action("takePhotoOfFrontDocument:", shared(this),
                  &ScanIDInstructionsViewController::takePhotoOfFrontDocument);
}

void ScanIDInstructionsViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  playIDGIF();
}

void ScanIDInstructionsViewController::playIDGIF() {
  if (const auto container = IDGIFCointainer.lock()) playGIF("IDGIF", *container);
}

void ScanIDInstructionsViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  if (const auto container = IDGIFCointainer.lock()) removeSubviews(*container);
}

void ScanIDInstructionsViewController::takePhotoOfFrontDocument(const std::shared_ptr<UIControl>&) {
}

}  // namespace kestrova
