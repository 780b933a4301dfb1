#pragma once

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtGui/QImage>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>
#include <gtest/gtest.h>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIWindow.h"

#ifdef __SANITIZE_THREAD__
// The toolkit draws pictures on threads of its own, which it ends by means that the sanitizer does
// not see.
extern "C" __attribute__((used, visibility("default"))) inline const char*
__tsan_default_suppressions() {
  return "race:QWaitCondition::~QWaitCondition\n";
}
#endif

namespace kestrova::test {

// A test with an interface drawn into memory: an application object, a window of 375 x 667 points,
// events as the toolkit makes them, and a clock that stands still until advance().
template <typename Base>
class InterfaceOn : public Base {
 protected:
  InterfaceOn() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the tests are on one thread.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    application_ = std::make_unique<QApplication>(count_, arguments_);
    platform::UIApplication::exists();
    platform::AnimationClock::shared().useManualTime();
  }

  ~InterfaceOn() override {
    screen_.reset();
    window_.reset();
    settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    platform::AnimationClock::shared().useSystemTime();
  }

  // Made at first and shown.
  platform::UIWindow& window(platform::CGSize size = {375, 667}) {
    if (!window_) {
      window_ = platform::UIWindow::make(size);
      window_->makeKeyAndVisible();
      window_->widget()->activateWindow();
      settle();
    }
    return *window_;
  }

  // Puts a view into the window, into a screen that fills it.
  template <typename View>
  std::shared_ptr<View> place(std::shared_ptr<View> view, const platform::CGRect& frame) {
    view->setFrame(frame);
    screen().addSubview(view);
    window().layoutIfNeeded();
    settle();
    return view;
  }
  platform::UIView& screen() {
    if (!screen_) {
      screen_ = std::make_shared<platform::UIView>();
      screen_->fillSuperview();
      window().addSubview(screen_);
      window().layoutIfNeeded();
    }
    return *screen_;
  }

  // Handles the events that wait, those that they post included.
  static void settle() {
    for (int round = 0; round < 5; ++round) {
      QCoreApplication::sendPostedEvents();
      QCoreApplication::processEvents();
    }
  }

  // Handles events until `condition` holds; false when that takes too long.
  [[nodiscard]] static bool waitFor(const std::function<bool()>& condition,
                                    std::chrono::milliseconds atMost = std::chrono::seconds(10)) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
      if (timer.elapsed() > atMost.count()) return false;
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
  }

  static void advance(double seconds) {
    platform::AnimationClock::shared().advance(seconds);
    settle();
  }

  // The toolkit's widget under a point of a view, as a pointer would find it, and that point in it.
  struct Target {
    QWidget* widget;
    QPoint point;
  };
  static Target under(const platform::UIView& view, platform::CGPoint point) {
    QWidget* const top = view.widget()->window();
    const QPoint inTop =
        view.widget()->mapTo(top, QPoint(int(std::lround(point.x)), int(std::lround(point.y))));
    QWidget* const found = top->childAt(inTop);
    QWidget* const widget = found ? found : top;
    return {widget, widget->mapFrom(top, inTop)};
  }
  static platform::CGPoint middle(const platform::UIView& view) {
    const auto size = view.bounds().size;
    return {size.width / 2, size.height / 2};
  }

  static void press(const platform::UIView& view, platform::CGPoint point) {
    const auto [widget, at] = under(view, point);
    QTest::mousePress(widget, Qt::LeftButton, {}, at);
  }
  static void move(const platform::UIView& view, platform::CGPoint point) {
    const auto [widget, at] = under(view, point);
    QTest::mouseMove(widget, at);
  }
  static void release(const platform::UIView& view, platform::CGPoint point) {
    const auto [widget, at] = under(view, point);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, at);
  }
  static void click(const platform::UIView& view, platform::CGPoint point) {
    press(view, point);
    release(view, point);
    settle();
  }
  static void click(const platform::UIView& view) { click(view, middle(view)); }

  // To the widget that has the keyboard's focus; to the window where none has.
  void type(const std::string& text) {
    QTest::keyClicks(keyTarget(), QString::fromStdString(text));
    settle();
  }
  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(keyTarget(), key, modifiers);
    settle();
  }

  // What is seen of a view, `scale` pixels a point.
  static QImage picture(const platform::UIView& view, double scale = 1) {
    QWidget& widget = *view.widget();
    QImage image(widget.size() * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
  }

 private:
  QWidget* keyTarget() {
    QWidget* const focused = QApplication::focusWidget();
    return focused ? focused : window().widget();
  }

  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
  std::shared_ptr<platform::UIWindow> window_;
  std::shared_ptr<platform::UIView> screen_;
};

using Interface = InterfaceOn<::testing::Test>;

}  // namespace kestrova::test
