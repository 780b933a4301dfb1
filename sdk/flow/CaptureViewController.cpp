#include "sdk/flow/CaptureViewController.h"

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void CaptureViewController::bind(UIBindings& bindings) {
  bindings.outlet("loadingView", loadingView);
  bindings.outlet("spinner", spinner);
}

void CaptureViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  NotificationCenter::defaultCenter().addObserver<CaptureViewController>(
      shared(this),
      [](CaptureViewController& screen, const Notification& notification) {
        screen.windowDidHide(notification.object);
      },
      UIWindowDidBecomeHiddenNotification);
}

void CaptureViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  ++attempt_;
}

void CaptureViewController::windowDidHide(const void* window) {
  if (!viewIfLoaded() || view()->window().get() != window) return;
  ++attempt_;
  wasHidden_ = true;

  closeCamera();
}

std::size_t CaptureViewController::beginAttempt() {
  wasHidden_ = false;
  return ++attempt_;
}

void CaptureViewController::showLoading(bool shows) {
  if (const auto overlay = loadingView.lock()) overlay->setHidden(!shows);
}

}  // namespace kestrova
