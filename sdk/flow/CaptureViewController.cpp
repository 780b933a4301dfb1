#include "sdk/flow/CaptureViewController.h"

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/flow/LongWait.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

void CaptureViewController::bind(UIBindings& bindings) {
  bindings.outlet("loadingView", loadingView);
  bindings.outlet("spinner", spinner);
  bindings.outlet("loadingHeading", loadingHeading);
  bindings.outlet("loadingText", loadingText);
  bindings.outlet("captureButton", captureButton);
  bindings.outlet("noticeLabel", noticeLabel);
}

void CaptureViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  if (const auto button = captureButton.lock()) buttonTitle_ = button->title();
  if (const auto label = loadingHeading.lock()) headingOfStoryboard_ = label->text();
  if (const auto label = loadingText.lock()) textOfStoryboard_ = label->text();
  NotificationCenter::defaultCenter().addObserver<CaptureViewController>(
      shared(this),
      [](CaptureViewController& screen, const Notification& notification) {
        screen.windowDidHide(notification.object);
      },
      UIWindowDidBecomeHiddenNotification);
}

void CaptureViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  setIdle();
}

void CaptureViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  ++attempt_;
  longWait_.reset();
}

void CaptureViewController::windowDidHide(const void* window) {
  if (!viewIfLoaded() || view()->window().get() != window) return;
  ++attempt_;
  wasHidden_ = true;
  setIdle();
  closeCamera();
}

std::size_t CaptureViewController::beginAttempt() {
  wasHidden_ = isNotEncoded_ = isNotSent_ = false;
  showNotice({});
  return ++attempt_;
}

void CaptureViewController::setBusy(const std::string& text) {
  isBusy_ = true;
  if (const auto button = captureButton.lock()) button->setTitle(text);
}

void CaptureViewController::setIdle() {
  isBusy_ = false;
  if (const auto button = captureButton.lock()) button->setTitle(buttonTitle_);
}

void CaptureViewController::showNotice(const std::string& text) {
  const auto label = noticeLabel.lock();
  if (!label) return;
  label->setText(text);
  label->setHidden(text.empty());
}

void CaptureViewController::showNotSaved() {
  showNotice("We couldn’t save your " + recordingName() +
             ". Make sure this device has free storage, then try again.");
}

void CaptureViewController::showLoading() {
  const auto overlay = loadingView.lock();
  if (!overlay || isNotEncoded_) return;
  overlay->setHidden(false);
  if (!isNotSent_) longWait_ = sayAfterLongWait(loadingText);
}

void CaptureViewController::hideLoading() {
  longWait_.reset();
  isNotSent_ = false;
  if (const auto overlay = loadingView.lock()) overlay->setHidden(true);
  if (const auto label = loadingHeading.lock()) label->setText(headingOfStoryboard_);
  if (const auto label = loadingText.lock()) label->setText(textOfStoryboard_);
  if (const auto ring = spinner.lock()) ring->setHidden(false);
}

API::FailureHandler CaptureViewController::uploadFailureHandler() {
  return [weak = std::weak_ptr(shared(this))](API::Failure failure) {
    if (const auto alive = weak.lock()) alive->uploadFailed(failure);
  };
}

void CaptureViewController::uploadFailed(API::Failure failure) {
  if (failure == API::Failure::notEncoded) {
    hideLoading();
    isNotEncoded_ = true;
    recordingNotSaved();
    return showNotSaved();
  }
  // The overlay stays: the backend may have the recording.
  longWait_.reset();
  isNotSent_ = true;
  if (const auto label = loadingHeading.lock()) {
    label->setText("Your " + recordingName() + " wasn’t sent");
  }
  if (const auto label = loadingText.lock()) {
    label->setText("Check the connection, then close and start again.");
    postAccessibilityAnnouncement(*label,
                                  "Your " + recordingName() + " wasn’t sent. " + label->text());
  }
  if (const auto ring = spinner.lock()) ring->setHidden(true);
}

}  // namespace kestrova
