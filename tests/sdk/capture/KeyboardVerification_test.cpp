// A complete verification with the keyboard alone.

#include "sdk/flow/CheckEmailViewController.h"
#include "tests/sdk/capture/CaptureFlowTest.h"

namespace kestrova {
namespace {

class KeyboardVerification : public test::CaptureFlowTest {
 protected:
  KeyboardVerification() { host().activateWindow(); }

  // Delivers a key as the desktop does: to the focused widget, else to the active window.
  void press(Qt::Key key) {
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused ? focused : &host(), key);
    settle();
  }
  // The accessible name of the focused view; empty while no view of the flow has the focus.
  static std::string focused() {
    for (const QWidget* widget = QApplication::focusWidget(); widget;
         widget = widget->parentWidget()) {
      if (const auto view = UIView::of(widget)) return view->accessibilityLabel();
    }
    return "";
  }
  // Moves the focus with Tab, or Shift+Tab, to the view of that name.
  void reach(std::string_view name, Qt::Key key = Qt::Key_Tab) {
    std::string passed;
    for (int step = 0; step < 20 && focused() != name; ++step) {
      press(key);
      passed += focused() + ", ";
    }
    ASSERT_EQ(focused(), name) << passed;
  }
  void typeText(const char* text) {
    for (const char* each = text; *each; ++each) {
      QTest::keyClick(QApplication::focusWidget(), *each);
      settle();
    }
  }
  // From the front's or the back's screen, through the camera picker.
  template <typename Screen>
  void photograph() {
    const auto screen = waitForTop<Screen>();
    ASSERT_TRUE(screen);
    reach("Take photo");
    press(Qt::Key_Space);
    for (const char* const button : {"Take photo", "Use photo"}) {
      ASSERT_TRUE(watchUntil([&] {
        const auto picker = screen->presentedViewController();
        return picker && usableButton(*picker->view(), button);
      })) << button;
      finishMotion();
      reach(button, Qt::Key_Backtab);
      press(Qt::Key_Return);
    }
    finishMotion();
  }
};

TEST_F(KeyboardVerification, GoesFromTheNationalityToTheEndWithAnIDCard) {
  start();
  reach("Country");
  typeText("ger");
  finishMotion();
  press(Qt::Key_Return);
  finishMotion();
  reach("Next");
  press(Qt::Key_Space);
  ASSERT_TRUE(waitForTop<CheckEmailViewController>());
  reach("Email address");
  typeText("ada@example.com");
  press(Qt::Key_Return);
  ASSERT_TRUE(waitForTop<MoveHeadViewController>());
  reach("Start");
  press(Qt::Key_Return);
  ASSERT_TRUE(watchUntil([&] { return top<ChooseDocumentTypeViewController>() != nullptr; }));
  const auto type = waitForTop<ChooseDocumentTypeViewController>();
  reach("Documents");
  for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Down}) press(key);
  press(Qt::Key_Space);
  EXPECT_EQ(type->selectedDocumentType, "NATIONAL_ID_CARD");
  reach("Next");
  press(Qt::Key_Return);
  ASSERT_NO_FATAL_FAILURE(photograph<ScanIDInstructionsViewController>());
  ASSERT_NO_FATAL_FAILURE(photograph<ScanBacksideViewController>());
  ASSERT_TRUE(waitForTop<CongratsViewController>());
  reach("Finish");
  press(Qt::Key_Return);
  finishMotion();
  EXPECT_FALSE(wrapper->presentedViewController());

  for (const char* const step :
       {"initialize", "set_nationality", "signup", "record_face_video",
        "choose_authentication_document", "record_authentication_document_video",
        "record_authentication_document_video_back"}) {
    EXPECT_EQ(countOf(step), 1U) << step;
  }
  EXPECT_NE(requestOf("set_nationality").body.find("country_code=de"), std::string::npos);
  expectNoDeviation();
}

}  // namespace
}  // namespace kestrova
