#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSource.h"
#include "platform/dispatch/MainLoop.h"
#include "platform/liveness/DevelopmentEngine.h"
#include "platform/liveness/DevelopmentScreen.h"
#include "platform/liveness/DevelopmentView.h"
#include "platform/liveness/Zoom.h"
#include "platform/uikit/UIButton.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::platform {
namespace {

using Rehearsal = DevelopmentEngine::Rehearsal;
using Ending = Rehearsal::Ending;

// What a test gives to the cameras of its runs, and what they are told.
struct Cameras {
  CameraSource::Events events;
  bool opens = true;
  std::atomic<int> starts = 0;
  std::atomic<int> stops = 0;
};

class Camera : public CameraSource {
 public:
  explicit Camera(std::shared_ptr<Cameras> all) : all_(std::move(all)) {}

  Result<Done> start(Events events) override {
    if (!all_->opens) return NSError{"test", 1, "busy"};
    all_->events = std::move(events);
    ++all_->starts;
    return Done{};
  }
  void stop() override {
    if (all_->opens) ++all_->stops;
  }
  void setFrameSize(PixelSize) override {}
  Result<UIImage> takePhoto(CameraFlashMode) override { return NSError{"test", 2, "no"}; }

 private:
  std::shared_ptr<Cameras> all_;
};

class Delegate : public ZoomVerificationDelegate {
 public:
  bool onBeforeZoomDismiss(ZoomVerificationStatus status,
                           std::optional<ZoomRetryReason> retryReason) override {
    EXPECT_FALSE(retryReason);
    asked.push_back(status);
    return keepsScreen;
  }
  void onZoomVerificationResult(const ZoomVerificationResult& result) override {
    const std::lock_guard lock(mutex_);
    results_.push_back(result);
    wasOnMainThread = isMainThread();
  }
  std::vector<ZoomVerificationResult> results() {
    const std::lock_guard lock(mutex_);
    return results_;
  }

  std::vector<ZoomVerificationStatus> asked;
  bool keepsScreen = false;
  std::atomic<bool> wasOnMainThread = false;

 private:
  std::mutex mutex_;
  std::vector<ZoomVerificationResult> results_;
};

// A run over a host's screen, on the development engine unless the test sets another.
class Liveness : public test::Interface {
 protected:
  Liveness() {
    window().setRootViewController(host);
    setCamera([all = cameras]() -> std::unique_ptr<CameraSource> {
      return std::make_unique<Camera>(all);
    });
    Zoom::sdk().auditTrailType = 1;
    ZoomCustomization look;
    look.enableLowLightMode = true;
    look.feedbackCustomization.topMargin = 333;
    look.ovalCustomization.progressColor1 = UIColor::blue();
    look.ovalCustomization.progressColor2 = UIColor::blue();
    Zoom::sdk().setCustomization(look);
  }
  ~Liveness() override {
    engine->setRehearsal({});
    CameraConfiguration::set({});
    LivenessEngine::setCurrent(nullptr);
  }

  static void setCamera(CameraConfiguration::Maker maker) {
    CameraConfiguration configuration;
    configuration.frontSource = std::move(maker);
    CameraConfiguration::set(configuration);
  }
  // Until the camera is open.
  std::shared_ptr<UIViewController> present() {
    const auto screen = Zoom::sdk().createVerificationVC(delegate);
    const int before = cameras->starts;
    host->present(screen, true);
    advance(1);
    EXPECT_TRUE(waitFor([&] { return !cameras->opens || cameras->starts > before; }));
    return screen;
  }
  // The camera sees a grey of 0 to 255, the user's right hand, left in the picture, red.
  void see(std::uint32_t shade) {
    const auto image = CGImage::make(90, 160);
    std::ranges::fill(image->pixels(), 0xff000000U | shade * 0x010101U);
    for (std::size_t y = 0; y < 160; ++y) std::ranges::fill(image->row(y).first(30), 0xffff0000U);
    cameras->events.frame({image, 0});
    settle();
  }
  // 20 pictures a second.
  void seeFor(double seconds, std::uint32_t firstShade = 100) {
    const int count = int(std::lround(seconds * 20));
    for (int i = 0; i < count && host->presentedViewController(); ++i) {
      see(firstShade + std::uint32_t(i));
      advance(0.05);
    }
  }
  bool waitForStops(int count) {
    return waitFor([&] { return cameras->stops == count; });
  }
  // A run from the first picture to its end.
  ZoomVerificationResult result() {
    present();
    see(100);
    advance(6);
    EXPECT_TRUE(waitFor([&] { return delegate->results().size() == 1; }));
    const auto all = delegate->results();
    return all.empty() ? ZoomVerificationResult() : all.front();
  }
  static std::optional<bool> initialize(const std::string& token, bool* onMainThread = nullptr) {
    std::atomic<int> answer = -1;
    std::atomic<bool> wasMain = false;
    Zoom::sdk().initialize(token, [&](bool success) {
      wasMain = isMainThread();
      answer = success;
    });
    if (!waitFor([&] { return answer >= 0; })) return std::nullopt;
    if (onMainThread) *onMainThread = wasMain;
    return answer == 1;
  }
  std::string tree() { return accessibilityTree(window()); }

  std::shared_ptr<DevelopmentEngine> engine = DevelopmentEngine::shared();
  std::shared_ptr<UIViewController> host = std::make_shared<UIViewController>();
  std::shared_ptr<Cameras> cameras = std::make_shared<Cameras>();
  std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
};

TEST_F(Liveness, TakesEightPicturesOverTwoSecondsAndGoes) {
  const auto screen = present();
  EXPECT_EQ(host->presentedViewController(), screen);
  seeFor(5);
  advance(1);
  EXPECT_EQ(host->presentedViewController(), nullptr);
  EXPECT_TRUE(waitForStops(1));
  EXPECT_EQ(delegate->asked, std::vector{DevelopmentEngine::kProcessed});
  ASSERT_EQ(delegate->results().size(), 1U);
  const auto result = delegate->results().front();
  EXPECT_EQ(result.status, DevelopmentEngine::kProcessed);
  EXPECT_FALSE(result.sessionId.empty());
  ASSERT_TRUE(result.faceMetrics);
  EXPECT_FALSE(result.faceMetrics->devicePartialLivenessResult);
  ASSERT_TRUE(result.faceMetrics->auditTrail);
  std::vector<std::uint32_t> shades;
  for (const auto& picture : *result.faceMetrics->auditTrail) {
    const auto bitmap = picture.cgImage().value();
    EXPECT_EQ(bitmap->width(), 90U);
    EXPECT_EQ(bitmap->height(), 160U);
    // Not as in the mirror.
    EXPECT_EQ(bitmap->row(0)[0], 0xffff0000U);
    shades.push_back(bitmap->row(0)[89] & 0xffU);
  }
  ASSERT_EQ(shades.size(), 8U);
  // The first after a second and a half and a quarter, each next a quarter, five pictures, later.
  EXPECT_NEAR(shades[0], 135, 1);
  for (std::size_t i = 1; i < shades.size(); ++i) {
    EXPECT_NEAR(shades[i] - shades[i - 1], 5, 1) << i;
  }
  EXPECT_TRUE(delegate->wasOnMainThread);
}

TEST_F(Liveness, HasNoAuditTrailWhereNoneIsWanted) {
  Zoom::sdk().auditTrailType = 0;
  EXPECT_FALSE(result().faceMetrics.value().auditTrail);
}

TEST_F(Liveness, EndsAsItWasRehearsed) {
  for (const auto status : {DevelopmentEngine::kCancelled, DevelopmentEngine::kTimedOut}) {
    delegate = std::make_shared<Delegate>();
    Rehearsal rehearsal;
    rehearsal.ending =
        status == DevelopmentEngine::kCancelled ? Ending::cancelled : Ending::timedOut;
    engine->setRehearsal(rehearsal);
    const auto ended = result();
    EXPECT_EQ(ended.status, status);
    EXPECT_FALSE(ended.faceMetrics);
    EXPECT_EQ(delegate->asked, std::vector{status});
  }
  delegate = std::make_shared<Delegate>();
  engine->setRehearsal({.ending = Ending::withoutFaceMetrics});
  const auto without = result();
  EXPECT_EQ(without.status, DevelopmentEngine::kProcessed);
  EXPECT_FALSE(without.faceMetrics);

  delegate = std::make_shared<Delegate>();
  engine->setRehearsal({.ending = Ending::withoutAuditTrail});
  EXPECT_FALSE(result().faceMetrics.value().auditTrail);

  for (const std::int64_t value : {0, 1, 2}) {
    delegate = std::make_shared<Delegate>();
    engine->setRehearsal({.livenessResult = ZoomDevicePartialLivenessResult(value)});
    EXPECT_EQ(result().faceMetrics.value().devicePartialLivenessResult,
              ZoomDevicePartialLivenessResult(value));
  }
}

TEST_F(Liveness, IsReadyOnceItIsInitialized) {
  bool onMainThread = false;
  engine->setRehearsal({.initializes = false});
  EXPECT_EQ(initialize("token"), false);
  EXPECT_EQ(Zoom::sdk().getStatus(), DevelopmentEngine::kNotInitialized);
  engine->setRehearsal({});
  EXPECT_EQ(initialize(""), false);
  EXPECT_EQ(initialize("token", &onMainThread), true);
  EXPECT_TRUE(onMainThread);
  EXPECT_EQ(Zoom::sdk().getStatus(), ZoomSDKStatus{1});
  engine->setRehearsal({.isReady = false});
  EXPECT_EQ(initialize("token"), true);
  EXPECT_NE(Zoom::sdk().getStatus(), ZoomSDKStatus{1});
}

TEST_F(Liveness, AnswersOnOtherThreadsWhereThatIsRehearsed) {
  engine->setRehearsal({.answersElsewhere = true});
  bool onMainThread = true;
  EXPECT_EQ(initialize("token", &onMainThread), true);
  EXPECT_FALSE(onMainThread);
  delegate->wasOnMainThread = true;
  EXPECT_EQ(result().status, DevelopmentEngine::kProcessed);
  EXPECT_FALSE(delegate->wasOnMainThread);
}

TEST_F(Liveness, IsCancelledByItsButtonAndByEscape) {
  const auto screen = present();
  see(100);
  const auto view = std::dynamic_pointer_cast<DevelopmentView>(screen->view());
  ASSERT_TRUE(view);
  click(*view->cancelButton());
  click(*view->cancelButton());
  advance(1);
  EXPECT_EQ(host->presentedViewController(), nullptr);
  ASSERT_EQ(delegate->results().size(), 1U);
  EXPECT_EQ(delegate->results().front().status, DevelopmentEngine::kCancelled);

  present();
  key(Qt::Key_Escape);
  advance(1);
  EXPECT_EQ(host->presentedViewController(), nullptr);
  EXPECT_EQ(delegate->results().size(), 2U);
  EXPECT_TRUE(waitForStops(2));
}

TEST_F(Liveness, StaysWhereTheDelegateSaysSo) {
  delegate->keepsScreen = true;
  EXPECT_EQ(result().status, DevelopmentEngine::kProcessed);
  EXPECT_NE(host->presentedViewController(), nullptr);
  EXPECT_TRUE(waitForStops(1));
}

TEST_F(Liveness, SaysThatTheCameraIsLostAndTimesOut) {
  const auto shows = [this](const char* text) {
    return waitFor([&] { return tree().find(text) != std::string::npos; });
  };
  const auto timesOut = [this](std::size_t runs) {
    advance(DevelopmentScreen::kPatience + 2);
    ASSERT_EQ(delegate->results().size(), runs);
    EXPECT_EQ(delegate->results().back().status, DevelopmentEngine::kTimedOut);
    EXPECT_EQ(host->presentedViewController(), nullptr);
  };
  present();
  seeFor(2);
  cameras->events.failed({"test", 3, "unplugged"});
  EXPECT_TRUE(shows("The camera gives no picture"));
  EXPECT_TRUE(delegate->results().empty());
  timesOut(1);
  EXPECT_TRUE(waitForStops(1));

  // One that never gives a picture, one that does not open, and none at all.
  present();
  EXPECT_TRUE(shows("Starting the camera"));
  timesOut(2);
  cameras->opens = false;
  present();
  EXPECT_TRUE(shows("The camera gives no picture"));
  timesOut(3);
  setCamera([]() -> std::unique_ptr<CameraSource> { return nullptr; });
  present();
  EXPECT_TRUE(shows("There is no camera"));
  timesOut(4);
}

TEST_F(Liveness, FreesTheCameraWhereTheHostTakesTheScreenAway) {
  present();
  see(100);
  host->dismiss(false);
  advance(6);
  EXPECT_TRUE(waitForStops(1));
  EXPECT_TRUE(delegate->asked.empty());
  EXPECT_TRUE(delegate->results().empty());
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

TEST_F(Liveness, OutlivesItsDelegate) {
  present();
  delegate.reset();
  see(100);
  advance(6);
  EXPECT_EQ(host->presentedViewController(), nullptr);
}

TEST_F(Liveness, TellsWhatToDoAndWhatItIsNot) {
  const auto screen = present();
  see(10);
  advance(0.1);
  EXPECT_NE(tree().find("Development engine: no liveness check"), std::string::npos) << tree();
  EXPECT_NE(tree().find("button \"Cancel\""), std::string::npos) << tree();
  EXPECT_NE(tree().find("Put your face in the oval"), std::string::npos) << tree();
  EXPECT_NE(tree().find("It is dark here"), std::string::npos) << tree();
  see(150);
  EXPECT_EQ(tree().find("It is dark here"), std::string::npos) << tree();
  advance(1.6);
  EXPECT_NE(tree().find("Turn your head slowly"), std::string::npos) << tree();

  const auto view = std::dynamic_pointer_cast<DevelopmentView>(screen->view());
  const auto oval = view->oval()->frame().insetBy(view->oval()->margin(), view->oval()->margin());
  EXPECT_NEAR(oval.size.width, 0.62 * 375, 0.5);
  for (const auto& label : view->subviews()) {
    if (label->accessibilityLabel() == "Turn your head slowly") {
      EXPECT_NEAR(label->frame().minY(), 333, 6);
    }
  }
  const auto shown = picture(*view);
  const auto at = [&](double x, double y) { return shown.pixelColor(int(x), int(y)); };
  // A mirror: the right hand is at the right.
  const auto right = at(oval.maxX() - 6, oval.midY() - 10);
  EXPECT_GT(right.red(), 230);
  EXPECT_LT(right.green(), 40);
  EXPECT_NEAR(at(oval.minX() + 20, oval.midY() - 10).green(), 150, 2);
  // Black beside it, the ring's blue at its upper right.
  EXPECT_LT(at(20, oval.midY()).lightness(), 60);
  const double angle = 0.1;
  const auto ring = at(oval.midX() + oval.size.width / 2 * std::sin(angle),
                       oval.midY() - oval.size.height / 2 * std::cos(angle));
  EXPECT_GT(ring.blue(), 200);
  EXPECT_LT(ring.red(), 60);
}

TEST_F(Liveness, KeepsItsTextOffTheFaceWhenTheWindowIsTurned) {
  ZoomCustomization look;
  look.feedbackCustomization.topMargin = 187.5;
  const auto view = place(std::make_shared<DevelopmentView>(look), {{0, 0}, {667, 375}});
  view->setFeedback("Thank you");
  view->setFrame({{0, 0}, {375, 667}});
  view->layoutIfNeeded();
  for (const auto& each : view->subviews()) {
    if (each->accessibilityLabel() != "Thank you") continue;
    EXPECT_GE(each->frame().minY(), view->oval()->frame().maxY() - view->oval()->margin());
  }
}

TEST_F(Liveness, KeepsItsTextsApartInALowWindow) {
  ZoomCustomization look;
  look.feedbackCustomization.topMargin = 136;
  const auto view = std::make_shared<DevelopmentView>(look);
  view->setFeedback("Put your face in the oval");
  view->setDark(true);
  place(view, {{0, 0}, {480, 272}});
  for (const auto& one : view->subviews()) {
    for (const auto& other : view->subviews()) {
      if (one == other || one == view->oval() || other == view->oval()) continue;
      const CGRect a = one->frame();
      const CGRect b = other->frame();
      EXPECT_TRUE(a.maxX() <= b.minX() || b.maxX() <= a.minX() || a.maxY() <= b.minY() ||
                  b.maxY() <= a.minY())
          << one->accessibilityLabel() << " lies over " << other->accessibilityLabel();
    }
  }
}

// What an integrator's adapter is to the facade.
class Adapter : public LivenessEngine {
 public:
  void preload() override { calls.emplace_back("preload"); }
  void setFacemapEncryptionKey(const std::string& publicKey) override {
    calls.push_back("key " + publicKey);
  }
  void initialize(const std::string& appToken, std::function<void(bool)> completion) override {
    calls.push_back("token " + appToken);
    completion(true);
  }
  ZoomSDKStatus status() const override { return ZoomSDKStatus{7}; }
  std::shared_ptr<UIViewController> makeCaptureScreen(
      const ZoomCustomization& customization, int auditTrailType,
      std::weak_ptr<ZoomVerificationDelegate> delegate) override {
    calls.push_back("screen " + std::to_string(auditTrailType) + " " +
                    std::to_string(int(customization.feedbackCustomization.topMargin)));
    EXPECT_TRUE(delegate.lock());
    return std::make_shared<UIViewController>();
  }

  std::vector<std::string> calls;
};

TEST_F(Liveness, ForwardsToTheEngineThatTheHostHasSet) {
  const auto adapter = std::make_shared<Adapter>();
  LivenessEngine::setCurrent(adapter);
  auto& zoom = Zoom::sdk();
  zoom.preload();
  zoom.setFacemapEncryptionKey("PEM");
  EXPECT_EQ(initialize("abc"), true);
  EXPECT_EQ(zoom.getStatus(), ZoomSDKStatus{7});
  EXPECT_TRUE(zoom.createVerificationVC(delegate));
  EXPECT_EQ(adapter->calls,
            (std::vector<std::string>{"preload", "key PEM", "token abc", "screen 1 333"}));
  LivenessEngine::setCurrent(nullptr);
  EXPECT_EQ(LivenessEngine::current(), engine);
}

}  // namespace
}  // namespace kestrova::platform
