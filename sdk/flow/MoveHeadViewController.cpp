#include "sdk/flow/MoveHeadViewController.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/flow/Animations.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void MoveHeadViewController::bind(UIBindings& bindings) {
  bindings.outlet("headGIFContainer", headGIFContainer);
  bindings.outlet("loadingView", loadingView);
  bindings.outlet("spinner", spinner);
  bindings.action("recordSelfieVideo:", shared(this), &MoveHeadViewController::recordSelfieVideo);
}

void MoveHeadViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  playHeadGIF();
}

void MoveHeadViewController::playHeadGIF() {
  if (const auto container = headGIFContainer.lock()) playGIF("headGIF", *container);
}

void MoveHeadViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  if (const auto container = headGIFContainer.lock()) removeSubviews(*container);
}

void MoveHeadViewController::recordSelfieVideo(const std::shared_ptr<UIControl>&) {}

}  // namespace kestrova
