#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string_view>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "examples/enduser/EndUser.h"
#include "examples/enduser/UsableButton.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::bench {

// Handles events, asleep in between, until `condition` holds; ends the program after half a minute.
inline void await(const char* what, const std::function<bool()>& condition) {
  constexpr int kPatience = 30'000;
  constexpr int kLook = 1;
  QEventLoop loop;
  QTimer look;
  look.setTimerType(Qt::PreciseTimer);
  QObject::connect(&look, &QTimer::timeout, [&] {
    if (condition()) loop.quit();
  });
  QTimer end;
  end.setSingleShot(true);
  QObject::connect(&end, &QTimer::timeout, [&] { loop.exit(1); });
  look.start(kLook);
  end.start(kPatience);
  if (condition() || loop.exec() == 0) return;
  std::fprintf(stderr, "waited in vain for %s\n", what);
  std::_Exit(1);
}

inline void handleEventsFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}

// The host's window, as large as a telephone's with two pixels a point.
class Phone {
 public:
  Phone() {
    window_.resize(375, 667);
    window_.show();
    handleEventsFor(std::chrono::milliseconds(200));
    host = UIViewController::wrapping(window_);
  }

  // Waits for the button and clicks it.
  static void tap(UIViewController& on, std::string_view label) {
    std::shared_ptr<UIButton> button;
    await("a button", [&] { return (button = usableButton(*on.view(), label)) != nullptr; });
    QWidget* const widget = button->widget();
    QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
  }

  std::shared_ptr<UIViewController> host;

 private:
  QWidget window_;
};

// Without a display; before the application is made.
inline void setUpDisplay() {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  ::setenv("QT_SCALE_FACTOR", "2", 0);
}

}  // namespace kestrova::bench
