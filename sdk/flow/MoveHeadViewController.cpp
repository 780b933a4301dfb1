#include "sdk/flow/MoveHeadViewController.h"

#include "platform/capture/AVCaptureDevice.h"
#include "platform/capture/CameraError.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Print.h"
#include "platform/liveness/Zoom.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UIScreen.h"
#include "sdk/backend/API.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/Animations.h"
#include "sdk/flow/LivenessScore.h"
#include "sdk/flow/NextStep.h"
#include "sdk/flow/Segues.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/media/VideoWriter.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

namespace {

// nil, or Optional(...) with the text that `write` makes of the value.
template <typename Value, typename Write>
std::string describe(const std::optional<Value>& value, Write write) {
  return value ? "Optional(" + write(*value) + ")" : "nil";
}

std::string count(std::size_t number, const char* of) {
  return std::to_string(number) + " " + of;
}

template <typename Enumeration>
std::string raw(Enumeration value) {
  return std::to_string(static_cast<std::int64_t>(value));
}

std::string lineOf(const ZoomVerificationResult& result,
                   const ZoomVerificationResult::FaceMetrics& metrics, std::int64_t liveScore) {
  const auto number = [](float value) { return decimalText(value); };
  return "sessionID: " + result.sessionId + " zoomFacemap: " +
         describe(metrics.zoomFacemap,
                  [](const auto& bytes) { return count(bytes.size(), "bytes"); }) +
         " devicePartialLivenessResult: " +
         describe(metrics.devicePartialLivenessResult, [](auto value) { return raw(value); }) +
         " devicePartialLivenessScore: " + describe(metrics.devicePartialLivenessScore, number) +
         " liveScore: " + std::to_string(liveScore) + " retryReason: " +
         describe(metrics.zoomRetryReason, [](auto value) { return raw(value); }) +
         " auditTrail: " +
         describe(metrics.auditTrail,
                  [](const auto& trail) { return count(trail.size(), "pictures"); }) +
         " auditTrailHistory: " + describe(metrics.auditTrailHistory, [](const auto& history) {
           return count(history.size(), "lists");
         });
}

}  // namespace

void MoveHeadViewController::bind(UIBindings& bindings) {
  CaptureViewController::bind(bindings);
  bindings.outlet("headGIFContainer", headGIFContainer);
  bindings.action("recordSelfieVideo:", shared(this), &MoveHeadViewController::recordSelfieVideo);
}

void MoveHeadViewController::viewDidLoad() {
  CaptureViewController::viewDidLoad();
  Zoom::sdk().preload();
  Zoom::sdk().setFacemapEncryptionKey(publicKey);
}

void MoveHeadViewController::viewWillAppear(bool animated) {
  CaptureViewController::viewWillAppear(animated);
  playHeadGIF();
}

void MoveHeadViewController::playHeadGIF() {
  if (const auto container = headGIFContainer.lock()) playGIF("headGIF", *container);
}

void MoveHeadViewController::viewWillDisappear(bool animated) {
  CaptureViewController::viewWillDisappear(animated);
  if (const auto container = headGIFContainer.lock()) removeSubviews(*container);
}

void MoveHeadViewController::recordSelfieVideo(const std::shared_ptr<UIControl>&) {
  if (isBusy()) return;
  const auto attempt = beginAttempt();
  setBusy("Starting the camera");
  AVCaptureDevice::requestAccess(AVMediaTypeVideo,
                                 [weak = std::weak_ptr(shared(this)), attempt](bool granted) {
                                   DispatchQueue::main().async([weak, attempt, granted] {
                                     const auto alive = weak.lock();
                                     if (alive && alive->isCurrent(attempt)) {
                                       alive->accessAnswered(granted);
                                     }
                                   });
                                 });
}

void MoveHeadViewController::accessAnswered(bool granted) {
  if (!granted) {
    setIdle();
    if (const auto error = AVCaptureDevice::accessError()) showNotice(cameraAdvice(*error));
    const auto alert = std::make_shared<UIAlertController>(
        "Alert", "We need access to your camera to verify your identity.");
    alert->addAction(
        std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard, [](UIAlertAction&) {
          if (UIDevice::current().hasSystemVersion(10)) {
            UIApplication::shared()->open(UIApplicationOpenSettingsURLString);
          }
        }));
    present(alert, true);
    return;
  }
  Zoom::sdk().initialize(MY_ZOOM_DEVELOPER_APP_TOKEN,
                         [weak = std::weak_ptr(shared(this)), attempt = attempt()](bool success) {
                           DispatchQueue::main().async([weak, attempt, success] {
                             if (!success) print("Zoom failed to initialize");
                             const auto alive = weak.lock();
                             if (alive && alive->isCurrent(attempt)) alive->engineAnswered(success);
                           });
                         });
}

void MoveHeadViewController::engineAnswered(bool success) {
  if (!success) {
    setIdle();
    return showNotice("We couldn’t start the selfie check. Try again.");
  }
  constexpr ZoomSDKStatus kReady{1};
  // While the question about leaving is open, no other screen can be presented.
  if (Zoom::sdk().getStatus() != kReady || presentedViewController()) return setIdle();
  setZoomCustomizationBasedOnDevice();
  Zoom::sdk().auditTrailType = 1;
  const auto screen = Zoom::sdk().createVerificationVC(shared(this));
  if (!screen) {
    print("Kestrova: the selfie cannot be taken: the liveness engine gave no screen");
    setIdle();
    const auto alert = std::make_shared<UIAlertController>(
        "The camera could not start", "Please try again, or close and come back later.");
    alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard));
    return present(alert, true);
  }
  screen->modalPresentationStyle = UIModalPresentationStyle::overCurrentContext;
  engineScreen_ = screen;
  // The button, covered by the engine's screen, is made ready for the next attempt.
  present(screen, true, [weak = std::weak_ptr(shared(this))] {
    if (const auto alive = weak.lock()) alive->setIdle();
  });
}

void MoveHeadViewController::closeCamera() {
  const auto screen = engineScreen_.lock();
  if (screen && presentedViewController() == screen) screen->dismiss(false);
}

void MoveHeadViewController::setZoomCustomizationBasedOnDevice() {
  constexpr double kFontSize = 24;
  ZoomCustomization look;
  look.showPreEnrollmentScreen = false;
  look.enableLowLightMode = true;
  look.frameCustomization.backgroundColor = UIColor::white();
  look.frameCustomization.sizeRatio = 1.0;
  look.feedbackCustomization.backgroundColor->setColors({UIColor::clear()});
  look.feedbackCustomization.textColor = UIColor::white();
  look.feedbackCustomization.topMargin = UIScreen::main().bounds().size.height * 0.5;
  look.feedbackCustomization.textFont =
      UIFont::make("Exo-Bold", kFontSize).value_or(UIFont::systemFont(kFontSize, 0.3));
  look.ovalCustomization.strokeWidth = 2.0;
  look.ovalCustomization.strokeColor = UIColor::black().withAlphaComponent(0.1);
  look.ovalCustomization.progressColor1 = UIColorExtensions::kestrovaBlue();
  look.ovalCustomization.progressColor2 = UIColorExtensions::kestrovaBlue();
  look.ovalCustomization.progressStrokeWidth = 4.0;
  look.ovalCustomization.progressRadialOffset = 0.0;
  Zoom::sdk().setCustomization(look);
}

bool MoveHeadViewController::onBeforeZoomDismiss(ZoomVerificationStatus,
                                                 std::optional<ZoomRetryReason>) {
  return false;
}

void MoveHeadViewController::onZoomVerificationResult(const ZoomVerificationResult& result) {
  constexpr ZoomVerificationStatus kProcessed{0};
  if (result.status != kProcessed) return;
  // weak_from_this(): the engine's thread may hold the last reference.
  DispatchQueue::main().async([weak = weak_from_this(), result] {
    const auto alive = std::dynamic_pointer_cast<MoveHeadViewController>(weak.lock());
    if (alive) alive->makeMovie(result);
  });
}

void MoveHeadViewController::makeMovie(const ZoomVerificationResult& result) {
  if (!result.faceMetrics) return;
  const auto& metrics = *result.faceMetrics;
  const std::int64_t liveScore =
      metrics.devicePartialLivenessResult
          ? static_cast<std::int64_t>(*metrics.devicePartialLivenessResult)
          : 0;
  print(lineOf(result, metrics, liveScore));
  if (!metrics.auditTrail || metrics.auditTrail->empty() || !isAppearing() || wasHidden()) return;
  const auto first = metrics.auditTrail->front().cgImage();
  if (!first) return;
  const auto movie = std::make_shared<CXEImagesToVideo>(
      CXEImagesToVideo::videoSettings(AVVideoCodecH264, static_cast<int>(first.value()->width()),
                                      static_cast<int>(first.value()->height())));
  setBusy("Preparing your video");
  // Runs `body` unless the user has left the screen or hidden the window.
  const auto onScreen = [weak = std::weak_ptr(shared(this)), attempt = attempt()](auto body) {
    const auto alive = weak.lock();
    if (!alive || !alive->isCurrent(attempt)) return;
    alive->setIdle();
    body(*alive);
  };
  movie->stopHandler = [onScreen] {
    onScreen([](MoveHeadViewController& screen) { screen.showNotSaved(); });
  };
  // No lasting cycle: the movie releases its completion after calling it.
  movie->createMovieFrom(
      *metrics.auditTrail, [onScreen, liveScore, movie](const std::filesystem::path& url) {
        onScreen([&](MoveHeadViewController& screen) {
          if (!movie->isMovieWhole()) return screen.showNotSaved();
          screen.showLoading();
          screen.uploadVideoAndLivenessScore(url, static_cast<double>(liveScore));
        });
      });
}

void MoveHeadViewController::uploadVideoAndLivenessScore(const std::filesystem::path& url,
                                                         double livenessScore) {
  if (!Kestrova::authentication_key) {
    print("Auth key not initialized");
    performSegue(Segues::showErrorScreenfromHeadMovement, shared(this));
    return;
  }
  if (!Kestrova::apiKey) {
    print("Api key not initialized");
    performSegue(Segues::showErrorScreenfromHeadMovement, shared(this));
    return;
  }
  const std::string apiKey = *Kestrova::apiKey;
  const std::string authentication_key = *Kestrova::authentication_key;
  VerificationStart::uploadBegan(*this);
  API::recordFaceVideo(
      url, apiKey, authentication_key,
      [weak = std::weak_ptr(shared(this)), apiKey,
       authentication_key](const JSONDictionary& answer) {
        print("recordFaceVideo response: " + description(answer));
        if (const auto alive = weak.lock()) {
          alive->hideLoading();
          alive->performSegue(Segues::scanDocumentSegue, alive);
        }
        recordStepInBackend(apiKey, authentication_key);
      },
      uploadFailureHandler());
  API::sendLivenessScore(
      apiKey, authentication_key,
      {JSONDictionary{{"token", "LIVENESS_FACTOR"}, {"value", livenessScoreText(livenessScore)}}},
      [](const JSONDictionary& answer) {
        print("sendLivenessScore response: " + description(answer));
      });
}

void MoveHeadViewController::recordStepInBackend(const std::string& apiKey,
                                                 const std::string& authentication_key) {
  DispatchQueue::global(DispatchQoS::background).async([apiKey, authentication_key] {
    API::checkFaceVideo(apiKey, authentication_key, [](const JSONDictionary& answer) {
      print("checkFaceVideo response: " + description(answer));
      storeNextStep(answer);
    });
  });
}

}  // namespace kestrova
