// The flow while keys are pressed at any moment.

#include <QtGui/QAccessible>

#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UITextField.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "tests/platform/uikit/Finger.h"
#include "tests/sdk/capture/CaptureFlowTest.h"

namespace kestrova {
namespace {

class Keyboard : public test::CaptureFlowTest {
 protected:
  Keyboard() { host().activateWindow(); }

  // Delivers a key as the desktop does: to the focused widget, else to the active window.
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused ? focused : &host(), key, modifiers);
    settle();
  }
  // The accessible name of the focused view; empty while no view of the flow has the focus.
  static std::string focused() {
    for (const QWidget* widget = QApplication::focusWidget(); widget;
         widget = widget->parentWidget()) {
      const auto view = UIView::of(widget);
      if (view && view->isFocusable()) return view->accessibilityLabel();
      if (view) return "";
    }
    return "";
  }
  void tabTo(std::string_view name) {
    for (int step = 0; step < 20 && focused() != name; ++step) press(Qt::Key_Tab);
    ASSERT_EQ(focused(), name);
  }
  std::string tree() const { return accessibilityTree(flowWindow()); }
};

TEST_F(Keyboard, ReachesNothingUnderALoadingOverlay) {
  start();
  push<MoveHeadViewController>("MoveHead");
  const auto front = push<ScanIDInstructionsViewController>("ScanIDInstructions");
  front->selectedDocumentType = "NATIONAL_ID_CARD";
  const auto takePhoto = usableButton(*front->view(), "Take photo");
  auto* const stale = QAccessible::queryAccessibleInterface(takePhoto->widget());
  EXPECT_EQ(tree().find("button \"Back\"") == std::string::npos, false);
  play("slow-bytes@record_authentication_document_video:once");
  photograph(*front);
  ASSERT_FALSE(front->loadingView.lock()->isHidden());

  EXPECT_EQ(tree().find("Take photo"), std::string::npos) << tree();
  EXPECT_EQ(tree().find("button \"Back\""), std::string::npos) << tree();
  EXPECT_NE(tree().find("busy"), std::string::npos) << tree();
  EXPECT_FALSE(navigation()->navigationBar()->subviews().front()->isReachable());
  EXPECT_EQ(focused(), "");
  for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Back}) press(key);
  press(Qt::Key_Left, Qt::AltModifier);
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), "Close");
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), "Close");
  stale->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(focused(), "Close");
  stale->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  click(*takePhoto);
  finishMotion();
  EXPECT_EQ(front->presentedViewController(), nullptr);
  EXPECT_EQ(top<ScanIDInstructionsViewController>(), front);
  ASSERT_TRUE(waitForTop<ScanBacksideViewController>());
  EXPECT_EQ(countOf("record_authentication_document_video"), 1U);
}

TEST_F(Keyboard, TypesNothingUnderTheVeilOfTheEmailScreen) {
  start();
  const auto email = push<CheckEmailViewController>("CheckEmail");
  const auto field = email->emailTextfield.lock();
  click(*field);
  QTest::keyClicks(QApplication::focusWidget(), "ada@example.com");
  play("stall:once");
  press(Qt::Key_Return);
  ASSERT_FALSE(email->veil.lock()->isHidden());
  EXPECT_FALSE(field->isEditing());
  press(Qt::Key_X);
  click(*field);
  press(Qt::Key_Return);
  EXPECT_EQ(field->text(), "ada@example.com");
  press(Qt::Key_Left, Qt::AltModifier);
  finishMotion();
  EXPECT_EQ(top<CheckEmailViewController>(), email);
  ASSERT_TRUE(waitFor([&] { return countOf("signup") == 1; }));
  // Closing works all the same.
  click(flowWindow(), {345, 28});
  finishMotion();
  EXPECT_EQ(wrapper->presentedViewController(), nullptr);
}

TEST_F(Keyboard, KeepsFocusOnNextScreenAfterPush) {
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  EXPECT_EQ(focused(), nationality->countryTextfield.lock()->accessibilityLabel());
  EXPECT_FALSE(nationality->countryTextfield.lock()->isEditing());
  press(Qt::Key_Down);
  finishMotion();
  for (const auto key : {Qt::Key_Down, Qt::Key_Return}) press(key);
  finishMotion();
  tabTo("Next");
  press(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return top<CheckEmailViewController>() != nullptr; }));
  // In the middle of the motion no key does anything.
  advance(0.1);
  EXPECT_EQ(focused(), "");
  for (const auto key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Escape}) press(key);
  press(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(focused(), "");
  finishMotion();
  const auto email = top<CheckEmailViewController>();
  ASSERT_TRUE(email);
  const auto field = email->emailTextfield.lock();
  EXPECT_EQ(focused(), field->accessibilityLabel());
  EXPECT_FALSE(email->startButton.lock()->isEnabled());
  // The caret is there before the first letter, and the first letter counts.
  const QImage withCaret = picture(*field);
  QTest::keyClicks(QApplication::focusWidget(), "ada@example.com");
  EXPECT_EQ(field->text(), "ada@example.com");
  press(Qt::Key_Return);
  ASSERT_TRUE(waitForTop<MoveHeadViewController>());
  EXPECT_EQ(focused(), "Start");

  // A screen that comes back has its focus too.
  press(Qt::Key_Left, Qt::AltModifier);
  finishMotion();
  ASSERT_EQ(top<CheckEmailViewController>(), email);
  EXPECT_EQ(focused(), field->accessibilityLabel());
  field->setText("");
  host().setFocus();
  EXPECT_NE(picture(*field), withCaret);
}

TEST_F(Keyboard, NeverGivesTheFocusToTheWayOut) {
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  nationality->selectedCountryCode = "de";
  nationality->chooseButton.lock()->setEnabled(true);
  Kestrova::apiKey.reset();
  tabTo("Next");
  for (int time = 0; time < 3; ++time) press(Qt::Key_Return);
  ASSERT_TRUE(waitForTop<WarningViewController>());
  EXPECT_EQ(focused(), "Try again");
  for (int time = 0; time < 3; ++time) press(Qt::Key_Return);
  finishMotion();
  EXPECT_EQ(top<ChooseCitizenViewController>(), nationality);
  // Here the only button of the warning leaves the flow.
  push<MoveHeadViewController>("MoveHead");
  push<WarningViewController>("Warning");
  EXPECT_EQ(focused(), "");
  press(Qt::Key_Return);
  finishMotion();
  EXPECT_TRUE(top<WarningViewController>());
}

TEST_F(Keyboard, IgnoresTheSecondTapOfADoubleTap) {
  start();
  const auto front = push<ScanIDInstructionsViewController>("ScanIDInstructions");
  const auto takePhoto = usableButton(*front->view(), "Take photo");
  click(*takePhoto);
  ASSERT_EQ(front->presentedViewController(), front->mediaUI);
  const auto tapEverywhere = [&] {
    for (double y = 20; y < 660; y += 20) {
      for (double x = 20; x < 375; x += 20) click(flowWindow(), {x, y});
    }
  };
  // Until 0.7 s: the motion takes 0.35 s.
  for (int step = 0; step < 7; ++step) {
    tapEverywhere();
    for (const auto key : {Qt::Key_Return, Qt::Key_Space}) press(key);
    advance(0.1);
  }
  ASSERT_EQ(front->presentedViewController(), front->mediaUI);
  tap(*front->mediaUI, "Take photo");
  ASSERT_TRUE(watchUntil([&] { return shows("Use photo"); }));
  EXPECT_EQ(focused(), "Use photo");
  press(Qt::Key_Return);
  EXPECT_TRUE(shows("Use photo"));
  tap(*front->mediaUI, "Retake");
  tap(*front->mediaUI, "Cancel");
  advance(0.4);
  ASSERT_EQ(front->presentedViewController(), nullptr);
  EXPECT_EQ(focused(), "Take photo");
  click(*takePhoto);
  press(Qt::Key_Return);
  EXPECT_EQ(front->presentedViewController(), nullptr);
  advance(0.4);
  press(Qt::Key_Return);
  EXPECT_EQ(front->presentedViewController(), front->mediaUI);
}

TEST_F(Keyboard, ClosesTheWholeFlowUnderAnAlertOrACamera) {
  device->refusal = cameraError(CameraErrorCode::notPermitted, "scripted");
  start();
  const auto selfie = push<MoveHeadViewController>("MoveHead");
  // The pointer is down on Close as the alert comes.
  test::Finger onClose(flowWindow(), {345, 28});
  press(Qt::Key_Space);
  ASSERT_TRUE(watchUntil([&] { return selfie->presentedViewController() != nullptr; }));
  onClose.release();
  finishMotion();
  EXPECT_EQ(wrapper->presentedViewController(), nullptr);

  device->refusal.reset();
  for (const bool isLeaving : {false, true}) {
    start();
    const auto front = push<ScanIDInstructionsViewController>("ScanIDInstructions");
    test::Finger finger(flowWindow(), {345, 28});
    press(Qt::Key_Space);
    ASSERT_EQ(front->presentedViewController(), front->mediaUI);
    if (isLeaving) {
      finishMotion();
      press(Qt::Key_Escape);
    }
    advance(0.1);
    finger.release();
    finishMotion();
    EXPECT_EQ(wrapper->presentedViewController(), nullptr) << isLeaving;
  }
}

TEST_F(Keyboard, GoesOnWhenTheAlertOverAScreenHasGone) {
  start();
  const auto email = push<CheckEmailViewController>("CheckEmail");
  click(*email->emailTextfield.lock());
  QTest::keyClicks(QApplication::focusWidget(), "ada@example.com");
  play("slow-bytes@signup:once");
  press(Qt::Key_Return);
  const auto alert = std::make_shared<UIAlertController>("Title", "Text");
  alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard));
  email->present(alert, true);
  finishMotion();
  ASSERT_TRUE(waitFor([&] { return !linesThatBegin("singup response: [").empty(); }));
  EXPECT_EQ(top<CheckEmailViewController>(), email);
  EXPECT_EQ(focused(), "OK");
  press(Qt::Key_Return);
  finishMotion();
  ASSERT_TRUE(waitForTop<MoveHeadViewController>());
  EXPECT_EQ(focused(), "Start");
}

}  // namespace
}  // namespace kestrova
