#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UILabel.h"
#include "sdk/ui/Extensions.h"
#include "tests/sdk/capture/CaptureFlowTest.h"
#include "tests/support/FileSizeLimit.h"

namespace kestrova {
namespace {

using test::Rehearsal;
using Ending = Rehearsal::Ending;

// Remembers what it is told; its screen is an empty one.
class ToldEngine : public LivenessEngine {
 public:
  void preload() override { calls.emplace_back("preload"); }
  void setFacemapEncryptionKey(const std::string& publicKey) override {
    calls.push_back(publicKey);
  }
  void initialize(const std::string& appToken, std::function<void(bool)> completion) override {
    calls.push_back(appToken);
    completion(true);
  }
  ZoomSDKStatus status() const override {
    ++asked;
    return answer;
  }
  std::shared_ptr<UIViewController> makeCaptureScreen(
      const ZoomCustomization& customization, int auditTrailType,
      std::weak_ptr<ZoomVerificationDelegate> delegate) override {
    EXPECT_TRUE(delegate.lock());
    calls.push_back("screen " + std::to_string(auditTrailType));
    look = customization;
    if (!givesScreen) return nullptr;
    screen = std::make_shared<UIViewController>();
    return screen;
  }

  ZoomSDKStatus answer{1};
  bool givesScreen = true;
  mutable int asked = 0;
  std::vector<std::string> calls;
  ZoomCustomization look;
  std::shared_ptr<UIViewController> screen;
};

class Selfie : public test::CaptureFlowTest {
 protected:
  std::shared_ptr<MoveHeadViewController> open() {
    start();
    return push<MoveHeadViewController>("MoveHead");
  }
  static void rehearse(const Rehearsal& rehearsal) {
    DevelopmentEngine::shared()->setRehearsal(rehearsal);
  }
  static std::string movieName() { return "exprotvideo.mp4"; }
  // Whether somebody in this process still writes or reads it.
  static bool isMovieOpen() {
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      if (std::filesystem::read_symlink(entry, gone).filename() == movieName()) return true;
    }
    return false;
  }
  // The middles of the controls in the frame.
  static constexpr CGPoint kClose{345, 28};
  static constexpr CGPoint kBack{28, 28};
  // Longer than anything takes that is expected not to happen.
  static constexpr std::chrono::milliseconds kMoment{300};
  std::size_t resultLines() const { return linesThatBegin("sessionID: ").size(); }
};

TEST_F(Selfie, IsSentAndLeadsOnWhateverTheAnswerSays) {
  rehearse({.answersElsewhere = true});
  const auto screen = open();
  EXPECT_TRUE(screen->loadingView.lock()->isHidden());
  play("status-500-object@record_face_video:once");
  takeSelfie();
  ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
  EXPECT_TRUE(screen->loadingView.lock()->isHidden());
  ASSERT_TRUE(watchUntil([&] {
    return linesThatBegin("checkFaceVideo response: [").size() == 1 &&
           linesThatBegin("sendLivenessScore response: [").size() == 1;
  }));
  EXPECT_EQ(linesThatBegin("recordFaceVideo response: [").size(), 1U);
  const auto results = linesThatBegin("sessionID: development-");
  ASSERT_EQ(results.size(), 1U);
  const std::string pieces =
      " zoomFacemap: nil devicePartialLivenessResult: nil devicePartialLivenessScore: nil "
      "liveScore: 0 retryReason: nil auditTrail: Optional(8 pictures) auditTrailHistory: nil";
  EXPECT_NE(results[0].find(pieces), std::string::npos) << results[0];
  const auto upload = requestOf("record_face_video").upload;
  ASSERT_TRUE(upload);
  EXPECT_GT(upload->size, 1000U);
  EXPECT_NE(Kestrova::next_step, std::nullopt);
  expectNoDeviation();
}

TEST_F(Selfie, SendsTheLivenessResultAndNotTheScore) {
  const auto screen = open();
  const std::pair<std::optional<int>, const char*> results[] = {
      {std::nullopt, "0.0"}, {0, "0.0"}, {1, "0.99"}, {2, "2.0"}};
  for (const auto& [value, text] : results) {
    Rehearsal rehearsal;
    if (value) rehearsal.livenessResult = ZoomDevicePartialLivenessResult(*value);
    rehearse(rehearsal);
    const auto before = countOf("authentication_assessments");
    takeSelfie();
    ASSERT_TRUE(watchUntil([&] { return countOf("authentication_assessments") == before + 1; }));
    const auto body = requestOf("authentication_assessments").body;
    EXPECT_NE(body.find(std::string("=") + text), std::string::npos) << body;
    EXPECT_NE(body.find("LIVENESS_FACTOR"), std::string::npos) << body;
    ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
    navigation()->popViewController(false);
    settle();
  }
  expectNoDeviation();
  // The score is logged alone, as decimal text.
  ZoomVerificationResult result;
  result.faceMetrics.emplace().devicePartialLivenessScore = 0.00001F;
  screen->onZoomVerificationResult(result);
  EXPECT_TRUE(watchUntil([&] {
    return output.text().find(" devicePartialLivenessScore: Optional(0.00001) ") !=
           std::string::npos;
  }));
}

TEST_F(Selfie, StaysWhereTheEngineGivesNoPictures) {
  const auto screen = open();
  for (const auto ending : {Ending::cancelled, Ending::timedOut, Ending::withoutFaceMetrics}) {
    rehearse({.ending = ending});
    takeSelfie();
    settle();
    EXPECT_EQ(resultLines(), 0U);
  }
  rehearse({.ending = Ending::withoutAuditTrail});
  takeSelfie();
  ASSERT_TRUE(watchUntil([&] { return resultLines() == 1; }));
  EXPECT_NE(linesThatBegin("sessionID: ")[0].find(" auditTrail: nil"), std::string::npos);
  EXPECT_EQ(top<MoveHeadViewController>(), screen);
  EXPECT_TRUE(screen->loadingView.lock()->isHidden());
  EXPECT_EQ(countOf("record_face_video"), 0U);
  // And another try succeeds.
  rehearse({});
  takeSelfie();
  EXPECT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
}

TEST_F(Selfie, StaysWhereTheEngineIsNotReady) {
  const auto screen = open();
  rehearse({.initializes = false, .answersElsewhere = true});
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return hasLine("Zoom failed to initialize"); }));
  const auto engine = std::make_shared<ToldEngine>();
  engine->answer = ZoomSDKStatus{2};
  LivenessEngine::setCurrent(engine);
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return engine->asked == 1; }));
  settle();
  EXPECT_EQ(engine->screen, nullptr);
  EXPECT_EQ(screen->presentedViewController(), nullptr);

  // An adapter without a screen: a line, and something to read.
  engine->answer = ZoomSDKStatus{1};
  engine->givesScreen = false;
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return shows("The camera could not start"); }));
  EXPECT_TRUE(hasLine("Kestrova: the selfie cannot be taken: the liveness engine gave no screen"));
  tap(*screen->presentedViewController(), "OK");
  LivenessEngine::setCurrent(nullptr);
  rehearse({});
  takeSelfie();
  EXPECT_TRUE(watchUntil([&] { return top<ChooseDocumentTypeViewController>() != nullptr; }));
}

TEST_F(Selfie, TellsTheEngineWhoAsksAndHowItIsToLook) {
  const auto engine = std::make_shared<ToldEngine>();
  LivenessEngine::setCurrent(engine);
  const auto screen = open();
  expectOneAnimation(*screen, screen->headGIFContainer);
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
  LivenessEngine::setCurrent(nullptr);
  EXPECT_EQ(screen->publicKey.size(), 450U);
  EXPECT_EQ(engine->calls,
            (std::vector<std::string>{"preload", screen->publicKey,
                                      "Qx7RmT2vLk9PwZ4nHc8JsYd3BfG6aNeU", "screen 1"}));
  EXPECT_EQ(screen->presentedViewController(), engine->screen);
  EXPECT_EQ(engine->screen->modalPresentationStyle, UIModalPresentationStyle::overCurrentContext);
  const auto& look = engine->look;
  EXPECT_FALSE(look.showPreEnrollmentScreen);
  EXPECT_TRUE(look.enableLowLightMode);
  EXPECT_EQ(look.frameCustomization.backgroundColor, UIColor::white());
  EXPECT_EQ(look.frameCustomization.sizeRatio, 1.0);
  EXPECT_EQ(look.feedbackCustomization.backgroundColor->colors(),
            std::vector<UIColor>{UIColor::clear()});
  EXPECT_EQ(look.feedbackCustomization.textColor, UIColor::white());
  EXPECT_EQ(look.feedbackCustomization.topMargin, 667 * 0.5);
  EXPECT_EQ(look.feedbackCustomization.textFont.fontName(), "Exo-Bold");
  EXPECT_EQ(look.feedbackCustomization.textFont.pointSize(), 24);
  EXPECT_EQ(look.ovalCustomization.strokeWidth, 2.0);
  EXPECT_EQ(look.ovalCustomization.strokeColor, UIColor::black().withAlphaComponent(0.1));
  EXPECT_EQ(look.ovalCustomization.progressColor1, UIColorExtensions::kestrovaBlue());
  EXPECT_EQ(look.ovalCustomization.progressColor2, UIColorExtensions::kestrovaBlue());
  EXPECT_EQ(look.ovalCustomization.progressStrokeWidth, 4.0);
  EXPECT_EQ(look.ovalCustomization.progressRadialOffset, 0.0);
}

TEST_F(Selfie, IsCheckedAfterItHasLedOnAndAlsoWhenTheFlowHasGone) {
  const auto hasArrived = std::make_shared<std::atomic<bool>>(false);
  const auto check = sent("check_face_video");
  check->look = [=] { return hasArrived->load(); };
  open();
  {
    const test::ArrivalWatch<ChooseDocumentTypeViewController> watch(
        "ChooseDocumentTypeViewController", [=] { *hasArrived = true; });
    takeSelfie();
    ASSERT_TRUE(watchUntil([&] { return check->waitFor({}); }));
    EXPECT_TRUE(check->seen());
  }
  useTransport();
  wrapper->dismiss(false);
  settle();

  open();
  play("slow-bytes@record_face_video:once");
  takeSelfie();
  ASSERT_TRUE(watchUntil([&] { return countOf("record_face_video") == 2; }));
  wrapper->dismiss(false);
  EXPECT_TRUE(watchUntil([&] { return countOf("check_face_video") == 2; }));
}

TEST_F(Selfie, AsksForTheCameraAndOpensTheSettings) {
  const auto screen = open();
  int opened = 0;
  UIApplication::shared()->openSettings = [&] { ++opened; };
  device->refusal = cameraError(CameraErrorCode::notPermitted, "scripted");
  for (const auto* version : {"10.0", "9.3"}) {
    UIDevice::current().setSystemVersion(version);
    tap(*screen, "Start");
    ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
    finishMotion();
    const auto alert =
        std::dynamic_pointer_cast<UIAlertController>(screen->presentedViewController());
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->title(), "Alert");
    EXPECT_EQ(alert->message(), "We need access to your camera to verify your identity.");
    EXPECT_EQ(alert->actions().size(), 1U);
    tap(*alert, "OK");
    finishMotion();
    EXPECT_EQ(opened, 1) << version;
    EXPECT_TRUE(shows("Camera access is off for this app. Turn it on in the system settings."));
  }
  UIDevice::current().setSystemVersion("");
  UIApplication::shared()->openSettings = {};
  // Granted since: no alert, and the engine's screen.
  device->refusal.reset();
  takeSelfie();
  EXPECT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
}

TEST_F(Selfie, LeadsToTheWarningWithoutKeysTheAuthenticationKeyFirst) {
  open();
  Kestrova::authentication_key.reset();
  takeSelfie();
  const auto warning = waitForTop<WarningViewController>();
  ASSERT_TRUE(warning);
  EXPECT_EQ(warning->messageLabel.lock()->text(), "We couldn’t start the verification.");
  EXPECT_EQ(linesThatBegin("Auth key not initialized").size(), 1U);
  push<MoveHeadViewController>("MoveHead");
  Kestrova::authentication_key = "A";
  Kestrova::apiKey.reset();
  takeSelfie();
  ASSERT_TRUE(waitForTop<WarningViewController>());
  EXPECT_EQ(linesThatBegin("Api key not initialized").size(), 1U);
  EXPECT_EQ(countOf("record_face_video"), 0U);
}

TEST_F(Selfie, CanBeLeftDuringTheRunTheEncodingAndTheUpload) {
  // Over the engine's screen.
  auto screen = open();
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
  const std::weak_ptr<MoveHeadViewController> gone = screen;
  screen.reset();
  wrapper->dismiss(true);
  finishMotion();
  EXPECT_TRUE(watchUntil([&] { return gone.expired(); }));

  // While the movie is made, in the middle of the motion away from the screen. It is whole before
  // the next one is begun.
  device->picture = test::plain(1280, 960, 0xff204080);
  for (const CGPoint control : {kClose, kBack}) {
    const auto runs = resultLines();
    open();
    takeSelfie();
    ASSERT_TRUE(watchUntil([&] { return resultLines() == runs + 1; }));
    click(flowWindow(), control);
    ASSERT_TRUE(waitFor([] { return documents() == std::vector{movieName()} && !isMovieOpen(); }));
    EXPECT_FALSE(waitFor([&] { return countOf("record_face_video") > 0; }, kMoment));
    finishMotion();
    EXPECT_FALSE(top<MoveHeadViewController>());
    wrapper->dismiss(false);
    settle();
  }
  open();
  takeSelfie();
  ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
  EXPECT_EQ(countOf("record_face_video"), 1U);
  wrapper->dismiss(true);
  finishMotion();

  // While it is sent, to a backend that never answers.
  screen = open();
  play("never-answers@record_face_video:once");
  takeSelfie();
  ASSERT_TRUE(watchUntil([&] { return !screen->loadingView.lock()->isHidden(); }));
  EXPECT_TRUE(shows("Sending your video"));
  EXPECT_FALSE(shows("Still sending"));
  advance(15);
  EXPECT_TRUE(shows("Still sending. Check the connection, or close and start again."));
  closeAndLeave();
}

TEST_F(Selfie, AsksBeforeItIsLostThroughCloseOrEscape) {
  open();
  takeSelfie();
  ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
  const auto flow = wrapper->presentedViewController();
  const auto question = [&] {
    return std::dynamic_pointer_cast<UIAlertController>(flow->presentedViewController());
  };
  // The second tap of a double tap does not answer.
  click(flowWindow(), kClose);
  click(flowWindow(), kClose);
  finishMotion();
  ASSERT_TRUE(question());
  EXPECT_EQ(question()->title(), "Leave the verification?");
  EXPECT_EQ(question()->actions().front()->title(), "Stay");
  tap(*question(), "Stay");
  finishMotion();
  EXPECT_TRUE(top<ChooseDocumentTypeViewController>());
  // Escape asks too, and stays.
  QTest::keyClick(flowWindow().widget(), Qt::Key_Escape);
  finishMotion();
  ASSERT_TRUE(question());
  QTest::keyClick(flowWindow().widget(), Qt::Key_Escape);
  finishMotion();
  EXPECT_FALSE(question());
  closeAndLeave();
  // Nothing is left to lose at the end.
  open();
  takeSelfie();
  ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
  push<CongratsViewController>("Congrats");
  finishMotion();
  click(flowWindow(), kClose);
  finishMotion();
  EXPECT_EQ(wrapper->presentedViewController(), nullptr);
}

TEST_F(Selfie, OpensNothingOverTheScreenThatComesAfterIt) {
  for (const bool isRefused : {true, false}) {
    const auto screen = open();
    if (isRefused) device->refusal = cameraError(CameraErrorCode::notPermitted, "scripted");
    // Both before an answer can come.
    const auto button = usableButton(*screen->view(), "Start");
    press(*button, middle(*button));
    release(*button, middle(*button));
    click(flowWindow(), kBack);
    ASSERT_TRUE(waitFor([&] { return !device->calls().empty(); }));
    EXPECT_FALSE(waitFor([&] { return screen->presentedViewController() != nullptr; }, kMoment));
    finishMotion();
    EXPECT_EQ(navigation()->viewControllers().size(), 1U);
    device->refusal.reset();
    wrapper->dismiss(false);
    settle();
  }
}

TEST_F(Selfie, SaysThatTheCameraStartsInTheFrameOfTheTap) {
  const auto screen = open();
  const auto button = usableButton(*screen->view(), "Start");
  press(*button, middle(*button));
  release(*button, middle(*button));
  EXPECT_TRUE(shows("Starting the camera"));
  // A second tap starts nothing more.
  click(*button);
  ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
  finishMotion();
  EXPECT_EQ(button->title(), "Start");
}

TEST_F(Selfie, SaysWhatFailedAndCanBeTakenAgain) {
  constexpr const char* kNotSaved =
      "We couldn’t save your video. Make sure this device has free storage, then try again.";
  const auto screen = open();
  const auto failsOnce = [&](const char* what) {
    takeSelfie();
    EXPECT_TRUE(waitFor([&] { return shows(kNotSaved); }, std::chrono::seconds(5))) << what;
    EXPECT_TRUE(screen->loadingView.lock()->isHidden()) << what;
    finishMotion();
    EXPECT_TRUE(usableButton(*screen->view(), "Start")) << what;
    EXPECT_EQ(countOf("record_face_video"), 0U) << what;
  };
  // A file where the directory is to be.
  std::filesystem::create_directories(directory.path() / "data");
  const auto documents = FileManager::documentDirectory().value();
  std::filesystem::remove_all(documents);
  std::ofstream(documents) << "in the way";
  failsOnce("no documents directory");
  std::filesystem::remove(documents);
  {
    const test::FileSizeLimit full(64);
    failsOnce("full disk");
  }
  std::filesystem::remove(directory.path() / "uploads");
  failsOnce("no temporary directory");
  std::filesystem::create_directory(directory.path() / "uploads");
  rehearse({.initializes = false});
  tap(*screen, "Start");
  EXPECT_TRUE(watchUntil([&] { return shows("We couldn’t start the selfie check. Try again."); }));
  rehearse({});
  // The backend may have the video: the overlay stays.
  play("malformed-json@record_face_video:once");
  takeSelfie();
  EXPECT_TRUE(watchUntil([&] { return shows("Your video wasn’t sent"); }));
  EXPECT_TRUE(shows("Check the connection, then close and start again."));
  EXPECT_FALSE(screen->loadingView.lock()->isHidden());
  wrapper->dismiss(false);
  settle();
  open();
  takeSelfie();
  EXPECT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
}

TEST_F(Selfie, IsGivenUpWhenTheWindowIsHidden) {
  // While pictures are taken, and while the movie is made.
  for (const bool isEncoding : {false, true}) {
    const auto screen = open();
    const auto sent = countOf("record_face_video");
    device->picture = test::plain(1280, 960, 0xff204080);
    if (isEncoding) {
      const auto runs = resultLines();
      takeSelfie();
      ASSERT_TRUE(watchUntil([&] { return resultLines() == runs + 1; }));
    } else {
      tap(*screen, "Start");
      ASSERT_TRUE(watchUntil([&] { return screen->presentedViewController() != nullptr; }));
      // The engine's own camera, after that of the permission.
      ASSERT_TRUE(watchUntil([&] { return std::ranges::count(device->calls(), "start") == 2; }));
      advance(2);
    }
    if (isEncoding) {
      host().setWindowState(Qt::WindowMinimized);
    } else {
      host().close();
    }
    ASSERT_TRUE(waitFor([&] { return device->calls().back() == "stop"; }));
    for (int second = 0; second < 6; ++second) advance(1);
    EXPECT_FALSE(waitFor([&] { return countOf("record_face_video") > sent; }, kMoment));
    // The instructions are back, and another attempt succeeds.
    host().setWindowState(Qt::WindowNoState);
    host().show();
    EXPECT_EQ(screen->presentedViewController(), nullptr);
    EXPECT_TRUE(screen->loadingView.lock()->isHidden());
    takeSelfie();
    ASSERT_TRUE(waitForTop<ChooseDocumentTypeViewController>());
    wrapper->dismiss(false);
    settle();
  }
}

TEST_F(Selfie, ShowsTheEnginesScreenAsTheFlowWantsIt) {
  const auto screen = open();
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return shows("Put your face in the oval"); }));
  // In the flow's blue, four points wide, once it is full.
  ASSERT_TRUE(watchUntil([&] { return shows("Thank you"); }));
  std::size_t blue = 0;
  const auto full = picture(flowWindow());
  for (int x = 0; x < full.width(); ++x) {
    for (int y = 0; y < full.height(); ++y) blue += full.pixelColor(x, y) == QColor(0, 87, 255);
  }
  EXPECT_GT(blue, 1500U);
}

}  // namespace
}  // namespace kestrova
