// The flow in the hands of a person who presses keys at any moment.

#include <QtGui/QAccessible>

#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UITextField.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "tests/sdk/capture/CaptureFlowTest.h"

namespace kestrova {
namespace {

class Keyboard : public test::CaptureFlowTest {
 protected:
  Keyboard() { host().activateWindow(); }

  // As the desktop delivers a key: to the widget that has the focus, else to the active window.
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

}  // namespace
}  // namespace kestrova
