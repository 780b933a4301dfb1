#include "platform/liveness/DevelopmentScreen.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <utility>

#include "platform/capture/AVCaptureDevice.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/liveness/DevelopmentView.h"
#include "platform/uikit/UIButton.h"

namespace kestrova::platform {

namespace {

constexpr double kStep = 1.0 / 30;
// Of 255. Between the two it stays as it was.
constexpr double kDark = 50;
constexpr double kBright = 65;

// From 0 to 255, of some pixels all over the picture.
double brightness(const CGImage& picture) {
  constexpr std::size_t kApart = 16;
  double sum = 0;
  double count = 0;
  for (std::size_t y = 0; y < picture.height(); y += kApart) {
    const auto row = picture.row(y);
    for (std::size_t x = 0; x < row.size(); x += kApart) {
      const auto pixel = row[x];
      sum +=
          0.2126 * (pixel >> 16 & 0xffU) + 0.7152 * (pixel >> 8 & 0xffU) + 0.0722 * (pixel & 0xffU);
      ++count;
    }
  }
  return sum / count;
}

std::string newSession() {
  std::random_device random;
  std::string name = "development-";
  for (int word = 0; word < 4; ++word) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", random());
    name += digits;
  }
  return name;
}

}  // namespace

DevelopmentScreen::DevelopmentScreen(Run run) : run_(std::move(run)) {
  modalPresentationStyle = UIModalPresentationStyle::overCurrentContext;
}

void DevelopmentScreen::loadView() {
  capture_ = std::make_shared<DevelopmentView>(run_.customization);
  capture_->cancelButton()->addAction(
      UIControlEvents::touchUpInside,
      [weak = std::weak_ptr<DevelopmentScreen>(shared(this))](const std::shared_ptr<UIControl>&) {
        if (const auto alive = weak.lock()) alive->end(DevelopmentEngine::kCancelled);
      });
  setView(capture_);
}

void DevelopmentScreen::viewDidAppear(bool) {
  if (isOver_ || steps_) return;
  openCamera();
  auto& clock = AnimationClock::shared();
  steps_ = clock.run(
      clock.now(),
      [weak = std::weak_ptr<DevelopmentScreen>(shared(this))](double now) -> std::optional<double> {
        const auto alive = weak.lock();
        if (!alive) return std::nullopt;
        alive->step(now);
        return alive->isOver_ ? std::nullopt : std::optional(now + kStep);
      });
}

void DevelopmentScreen::openCamera() {
  const auto device = AVCaptureDevice::defaultDevice(AVCaptureDevice::Position::front);
  auto source = device ? device->makeSource() : nullptr;
  if (!source) return waitAgain("There is no camera");
  waitAgain("Starting the camera");
  camera_ = std::make_shared<CameraSession>(std::move(source));
  const std::weak_ptr<DevelopmentScreen> weak = shared(this);
  camera_->onFrame = [weak](const CameraFrame& frame) {
    if (const auto alive = weak.lock()) alive->show(frame);
  };
  camera_->onFailure = [weak](const NSError&) {
    const auto alive = weak.lock();
    if (!alive) return;
    alive->camera_.reset();
    alive->waitAgain("The camera gives no picture");
  };
  camera_->start();
}

void DevelopmentScreen::viewWillDisappear(bool) {
  isOver_ = true;
  steps_.reset();
  camera_.reset();
}

bool DevelopmentScreen::accessibilityPerformEscape() {
  end(DevelopmentEngine::kCancelled);
  return true;
}

void DevelopmentScreen::show(const CameraFrame& frame) {
  if (!firstPictureAt_) firstPictureAt_ = AnimationClock::shared().now();
  waitingSince_.reset();
  picture_ = frame.image;
  const double light = brightness(*picture_);
  isDark_ = light < kDark || (isDark_ && light < kBright);
  capture_->oval()->setPicture(*picture_);
  capture_->setDark(isDark_ && run_.customization.enableLowLightMode);
}

void DevelopmentScreen::waitAgain(const char* text) {
  waitingSince_ = AnimationClock::shared().now();
  capture_->setFeedback(text);
}

void DevelopmentScreen::step(double now) {
  if (!waitingSince_) {
    take(now - *firstPictureAt_);
  } else if (now - *waitingSince_ >= kPatience) {
    end(DevelopmentEngine::kTimedOut);
  }
}

void DevelopmentScreen::take(double sinceFirst) {
  const double taking = sinceFirst - kPlacing;
  if (taking < 0) return capture_->setFeedback("Put your face in the oval");
  if (trail_.size() < kPictures &&
      taking >= kTaking * static_cast<double>(trail_.size() + 1) / kPictures) {
    trail_.emplace_back(picture_);
  }
  capture_->oval()->setProgress(std::min(1.0, taking / kTaking));
  capture_->setFeedback(taking < kTaking ? "Turn your head slowly" : "Thank you");
  if (taking >= kTaking + kThanking && trail_.size() == kPictures) end(rehearsedStatus());
}

ZoomVerificationStatus DevelopmentScreen::rehearsedStatus() const {
  using Ending = DevelopmentEngine::Rehearsal::Ending;
  switch (run_.rehearsal.ending) {
    case Ending::cancelled:
      return DevelopmentEngine::kCancelled;
    case Ending::timedOut:
      return DevelopmentEngine::kTimedOut;
    default:
      return DevelopmentEngine::kProcessed;
  }
}

ZoomVerificationResult DevelopmentScreen::result(ZoomVerificationStatus status) const {
  using Ending = DevelopmentEngine::Rehearsal::Ending;
  ZoomVerificationResult result;
  result.status = status;
  result.sessionId = newSession();
  const auto ending = run_.rehearsal.ending;
  if (status != DevelopmentEngine::kProcessed || ending == Ending::withoutFaceMetrics) {
    return result;
  }
  auto& metrics = result.faceMetrics.emplace();
  metrics.devicePartialLivenessResult = run_.rehearsal.livenessResult;
  if (run_.takesAuditTrail && ending != Ending::withoutAuditTrail) metrics.auditTrail = trail_;
  return result;
}

void DevelopmentScreen::end(ZoomVerificationStatus status) {
  if (std::exchange(isOver_, true)) return;
  // A step that ends the run is under way in the token.
  const auto steps = std::exchange(steps_, nullptr);
  camera_.reset();
  const auto delegate = run_.delegate.lock();
  const auto tell = [weak = run_.delegate, result = result(status),
                     elsewhere = run_.rehearsal.answersElsewhere] {
    const auto report = [weak, result] {
      auto alive = weak.lock();
      if (!alive) return;
      alive->onZoomVerificationResult(result);
      // A delegate is a screen: if this is the last to hold it, it goes on the main thread.
      DispatchQueue::main().async([alive = std::move(alive)] {});
    };
    if (!elsewhere) return report();
    DispatchQueue::global(DispatchQoS::userInitiated).async(report);
  };
  if (delegate && delegate->onBeforeZoomDismiss(status, std::nullopt)) return tell();
  dismiss(true, tell);
}

}  // namespace kestrova::platform
