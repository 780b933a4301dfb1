#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIDevice.h"
#include "sdk/ui/Extensions.h"
#include "tests/sdk/capture/CaptureFlowTest.h"

namespace kestrova {
namespace {

using test::Rehearsal;
using Ending = Rehearsal::Ending;

class Selfie : public test::CaptureFlowTest {
 protected:
  std::shared_ptr<MoveHeadViewController> open() {
    start();
    return push<MoveHeadViewController>("MoveHead");
  }
  static void rehearse(const Rehearsal& rehearsal) {
    DevelopmentEngine::shared()->setRehearsal(rehearsal);
  }
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
  rehearse({.isReady = false});
  tap(*screen, "Start");
  bool isIdle = false;
  DispatchQueue::main().asyncAfter(std::chrono::milliseconds(50), [&] { isIdle = true; });
  ASSERT_TRUE(watchUntil([&] { return isIdle; }));
  EXPECT_EQ(screen->presentedViewController(), nullptr);
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
  ASSERT_TRUE(waitForTop<WarningViewController>());
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

  // While the movie is made: nobody sends it.
  open();
  takeSelfie();
  wrapper->dismiss(true);
  finishMotion();
  EXPECT_EQ(countOf("record_face_video"), 0U);

  // While it is sent, to a backend that never answers.
  screen = open();
  play("never-answers@record_face_video:once");
  takeSelfie();
  ASSERT_TRUE(watchUntil([&] { return !screen->loadingView.lock()->isHidden(); }));
  EXPECT_TRUE(shows("Sending your video"));
  click(flowWindow(), {345, 28});
  finishMotion();
  EXPECT_EQ(wrapper->presentedViewController(), nullptr);
}

TEST_F(Selfie, ShowsTheEnginesScreenAsTheFlowWantsIt) {
  const auto screen = open();
  tap(*screen, "Start");
  ASSERT_TRUE(watchUntil([&] { return shows("Put your face in the oval"); }));
  const auto shown = picture(flowWindow());
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
