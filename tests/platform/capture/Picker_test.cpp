// The camera's screen as a user has it: real taps and keys on it, a scripted device or real files
// behind it.

#include <future>

#include "examples/enduser/UsableButton.h"
#include "platform/capture/UIImagePickerController.h"
#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "tests/platform/capture/CameraTest.h"
#include "tests/platform/capture/ScriptedCamera.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {
namespace {

constexpr std::uint32_t kGreen = 0xff14b43c;

// The screen that presents the picker and hears of it.
class Presenter : public UIViewController, public UIImagePickerControllerDelegate {
 public:
  void imagePickerControllerDidFinishPickingMediaWithInfo(
      UIImagePickerController& picker, const UIImagePickerControllerInfo& info) override {
    calls.emplace_back("picked");
    picked = info;
    picker.dismiss(true, [this] { calls.emplace_back("dismissed"); });
  }
  void imagePickerControllerDidCancel(UIImagePickerController& picker) override {
    calls.emplace_back("cancelled");
    picker.dismiss(true, [this] { calls.emplace_back("dismissed"); });
  }

  std::vector<std::string> calls;
  UIImagePickerControllerInfo picked;
};

class PickerTest : public InterfaceOn<CameraTest> {
 protected:
  PickerTest() {
    window().setRootViewController(presenter);
    picker->delegate = presenter;
    picker->sourceType = UIImagePickerControllerSourceType::camera;
    useDevice();
    NotificationCenter::defaultCenter().addObserver<Presenter>(
        presenter, [](Presenter& to, const Notification&) { to.calls.emplace_back("captured"); },
        kUserDidCaptureItem);
  }
  ~PickerTest() override {
    NotificationCenter::defaultCenter().removeObserver(presenter.get(), kUserDidCaptureItem);
    presenter->dismiss(false);
    settle();
    waitForRelease();
  }

  static bool waitFor(const std::function<bool()>& condition) {
    return InterfaceOn<CameraTest>::waitFor(condition);
  }
  void useDevice() {
    CameraConfiguration configuration;
    configuration.rearSource = device->maker();
    CameraConfiguration::set(configuration);
  }
  static void useFile(const std::filesystem::path& file) {
    CameraConfiguration configuration;
    configuration.rear = file;
    CameraConfiguration::set(configuration);
  }

  void present() {
    presenter->present(picker, true);
    advance(1);
  }
  // Until the shutter, or another button, can be pressed.
  std::shared_ptr<UIButton> waitForButton(std::string_view label) {
    std::shared_ptr<UIButton> found;
    EXPECT_TRUE(waitFor([&] {
      // New buttons take no taps at first.
      advance(0.1);
      return (found = usableButton(*picker->view(), label)) != nullptr;
    })) << label
        << "\n"
        << accessibilityTree(window());
    return found;
  }
  bool shows(std::string_view text) {
    return accessibilityTree(window()).find(text) != std::string::npos;
  }
  // Presents, and takes a photograph.
  void shoot() {
    present();
    click(*waitForButton("Take photo"));
    ASSERT_TRUE(waitForButton("Use photo"));
  }

  std::shared_ptr<ScriptedDevice> device = std::make_shared<ScriptedDevice>();
  std::shared_ptr<Presenter> presenter = std::make_shared<Presenter>();
  std::shared_ptr<UIImagePickerController> picker = std::make_shared<UIImagePickerController>();
};

using Calls = std::vector<std::string>;

TEST_F(PickerTest, PhotographsAndHandsTheWholePictureOver) {
  useFile(CameraTest::picture("card.png", 1200, 900, 0xffdc2814, kGreen));
  present();
  const auto shutter = waitForButton("Take photo");
  EXPECT_GE(shutter->frame().size.width, 72);
  // As large as it goes, on black.
  const QImage live = InterfaceOn::picture(*picker->view());
  EXPECT_EQ(live.pixelColor(90, 300), QColor(0xdc, 0x28, 0x14));
  EXPECT_EQ(live.pixelColor(280, 300), QColor(0x14, 0xb4, 0x3c));
  EXPECT_EQ(live.pixelColor(90, 20), QColor(Qt::black));
  click(*shutter);
  const auto use = waitForButton("Use photo");
  EXPECT_EQ(presenter->calls, Calls{"captured"});
  EXPECT_EQ(InterfaceOn::picture(*picker->view()).pixelColor(90, 300), QColor(0xdc, 0x28, 0x14));
  click(*use);
  advance(1);
  EXPECT_EQ(presenter->calls, (Calls{"captured", "picked", "dismissed"}));
  EXPECT_EQ(presenter->presentedViewController(), nullptr);
  const auto found = presenter->picked.find(UIImagePickerControllerOriginalImage);
  ASSERT_NE(found, presenter->picked.end());
  EXPECT_EQ(std::any_cast<UIImage>(found->second).size(), (CGSize{1200, 900}));
}

TEST_F(PickerTest, TakesItAgainWithTheCameraOpenedAnew) {
  shoot();
  click(*waitForButton("Retake"));
  EXPECT_FALSE(shows("Use photo"));
  click(*waitForButton("Take photo"));
  ASSERT_TRUE(waitForButton("Use photo"));
  EXPECT_EQ(presenter->calls, (Calls{"captured", "captured"}));
  waitForRelease();
  EXPECT_EQ(device->calls(), (Calls{"start", "photo", "stop", "start", "photo", "stop"}));
}

TEST_F(PickerTest, IsCancelledFromEachOfItsStatesAndGivesTheCameraBack) {
  present();
  waitForButton("Take photo");
  click(*waitForButton("Cancel"));
  advance(1);
  EXPECT_EQ(presenter->calls, (Calls{"cancelled", "dismissed"}));
  waitForRelease();
  EXPECT_EQ(device->calls(), (Calls{"start", "stop"}));

  // The same picker again, by Escape, with a photograph taken.
  presenter->calls.clear();
  shoot();
  key(Qt::Key_Escape);
  advance(1);
  EXPECT_EQ(presenter->calls, (Calls{"captured", "cancelled", "dismissed"}));

  // Before the camera is open.
  presenter->calls.clear();
  std::promise<void> gate;
  CameraSession::queue().async([opened = gate.get_future().share()] { opened.wait(); });
  present();
  EXPECT_FALSE(usableButton(*picker->view(), "Take photo"));
  key(Qt::Key_Escape);
  advance(1);
  gate.set_value();
  EXPECT_EQ(presenter->calls, (Calls{"cancelled", "dismissed"}));
  EXPECT_EQ(presenter->presentedViewController(), nullptr);
}

TEST_F(PickerTest, IsWorkedByKeysAlone) {
  present();
  waitForButton("Take photo");
  key(Qt::Key_Space);
  waitForButton("Use photo");
  key(Qt::Key_Return);
  advance(1);
  EXPECT_EQ(presenter->calls, (Calls{"captured", "picked", "dismissed"}));
}

TEST_F(PickerTest, OffersAnOverlayOfItsSizeAndKeepsTheOneThatIsSet) {
  EXPECT_EQ(picker->cameraOverlayView()->frame(), (CGRect{{0, 0}, {375, 667}}));
  const auto outline = std::make_shared<UIView>(CGRect{{37.5, 100}, {300, 400}});
  picker->setCameraOverlayView(outline);
  EXPECT_EQ(picker->cameraOverlayView(), outline);
  present();
  EXPECT_TRUE(outline->window());
  EXPECT_EQ(outline->frame(), (CGRect{{37.5, 100}, {300, 400}}));
  // It follows the window.
  window().widget()->resize(750, 667);
  settle();
  EXPECT_EQ(outline->frame(), (CGRect{{75, 100}, {600, 400}}));
  picker->setCameraOverlayView(nullptr);
  EXPECT_FALSE(outline->superview());
  EXPECT_EQ(picker->cameraOverlayView()->frame().size, (CGSize{750, 667}));
}

TEST_F(PickerTest, SwitchesTheFlashWhereThereIsOne) {
  present();
  waitForButton("Take photo");
  EXPECT_FALSE(usableButton(*picker->view(), "Flash: Auto"));
  presenter->dismiss(false);
  device->hasFlash = true;
  present();
  click(*waitForButton("Flash: Auto"));
  EXPECT_EQ(picker->cameraFlashMode, CameraFlashMode::on);
  click(*waitForButton("Flash: On"));
  click(*waitForButton("Take photo"));
  waitForButton("Use photo");
  EXPECT_EQ(device->flash(), CameraFlashMode::off);
}

TEST_F(PickerTest, SaysWhatIsWrongWithTheCameraAndTriesAgain) {
  const std::pair<CameraErrorCode, const char*> reasons[] = {
      {CameraErrorCode::busy, "Another app is using the camera"},
      {CameraErrorCode::notPermitted, "Camera access is off for this app"},
      {CameraErrorCode::notFound, "No camera was found"},
      {CameraErrorCode::failed, "We can’t get a picture from the camera"}};
  for (const auto& [code, text] : reasons) {
    device->refusal = cameraError(code, "scripted");
    present();
    EXPECT_TRUE(waitFor([&] { return shows(text); })) << text;
    EXPECT_FALSE(usableButton(*picker->view(), "Take photo"));
    presenter->dismiss(false);
    settle();
  }
  present();
  ASSERT_TRUE(waitForButton("Try again"));
  device->refusal.reset();
  click(*waitForButton("Try again"));
  EXPECT_TRUE(waitForButton("Take photo"));
  EXPECT_FALSE(shows("The camera can’t be used"));

  // Pulled out while it is looked through, and while it photographs.
  device->unplug();
  EXPECT_TRUE(waitFor([&] { return shows("The camera was disconnected"); }));
  device->photoFailure = cameraError(CameraErrorCode::disconnected, "scripted");
  click(*waitForButton("Try again"));
  click(*waitForButton("Take photo"));
  EXPECT_TRUE(waitFor([&] { return shows("The camera was disconnected"); }));
  click(*waitForButton("Cancel"));
  advance(1);
  EXPECT_EQ(presenter->calls, (Calls{"cancelled", "dismissed"}));
}

TEST_F(PickerTest, IsThereWhereACameraIs) {
  using Type = UIImagePickerControllerSourceType;
  EXPECT_TRUE(UIImagePickerController::isSourceTypeAvailable(Type::camera));
  EXPECT_FALSE(UIImagePickerController::isSourceTypeAvailable(Type::photoLibrary));
  useFile(folder.path() / "missing");
  EXPECT_FALSE(UIImagePickerController::isSourceTypeAvailable(Type::camera));
}

}  // namespace
}  // namespace kestrova::test
