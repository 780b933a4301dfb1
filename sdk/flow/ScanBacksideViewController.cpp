#include "sdk/flow/ScanBacksideViewController.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/flow/Animations.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void ScanBacksideViewController::bind(UIBindings& bindings) {
  bindings.outlet("IDGIFCointainer", IDGIFCointainer);
  bindings.outlet("loadingView", loadingView);
  bindings.outlet("spinner", spinner);
  bindings.action("takePhotoOfBacksideDocument:", shared(this),
                  &ScanBacksideViewController::takePhotoOfBacksideDocument);
}

void ScanBacksideViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  playIDGIF();
}

void ScanBacksideViewController::playIDGIF() {
  if (const auto container = IDGIFCointainer.lock()) playGIF("IDGIF", *container);
}

void ScanBacksideViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  if (const auto container = IDGIFCointainer.lock()) removeSubviews(*container);
}

void ScanBacksideViewController::takePhotoOfBacksideDocument(const std::shared_ptr<UIControl>&) {}

}  // namespace kestrova
