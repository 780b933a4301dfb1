// What the flow's screens cost: the start, a push to the next screen, a key in the search.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include <QtCore/QEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "bench/Report.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/ChooseCitizenViewController.h"

namespace kestrova {
namespace {

using Clock = std::chrono::steady_clock;

double percentile95(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[(values.size() - 1) * 95 / 100];
}

void handleEventsFor(double seconds) {
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (Clock::now() < end) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

// Notices that something below a window has been painted.
class PaintWatch : public QObject {
 public:
  PaintWatch() { qApp->installEventFilter(this); }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) hasPainted_ = true;
    return false;
  }

  // Milliseconds from `begin` to the end of the first round of events that has painted; ends the
  // program where none does.
  double timeToFrame(const std::function<void()>& begin) {
    const auto start = Clock::now();
    begin();
    hasPainted_ = false;
    while (!hasPainted_) {
      QCoreApplication::processEvents();
      if (Clock::now() - start > std::chrono::seconds(10)) {
        std::fprintf(stderr, "flow_bench: nothing is drawn\n");
        std::exit(1);
      }
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  }

 private:
  bool hasPainted_ = false;
};

std::shared_ptr<UINavigationController> navigation(const UIViewController& host) {
  return std::dynamic_pointer_cast<UINavigationController>(
      host.presentedViewController()->children().front());
}

void measureStart(PaintWatch& watch, const std::shared_ptr<UIViewController>& host) {
  std::vector<double> times;
  for (int round = 0; round < 15; ++round) {
    times.push_back(watch.timeToFrame([&] { Kestrova::startVerification(host); }));
    handleEventsFor(0.5);
    if (round < 14) {
      host->dismiss(false);
      handleEventsFor(0.1);
    }
  }
  bench::report("startVerification to its first frame, cold", times.front(), "ms", 60);
  bench::report("startVerification to its first frame, p95", percentile95(times), "ms", 60);
}

void measurePushes(PaintWatch& watch, const UIViewController& host) {
  const auto stack = navigation(host);
  const auto& from = stack->viewControllers().front()->scene();
  std::vector<double> cold;
  std::vector<double> warm;
  for (int round = 0; round < 9; ++round) {
    for (const auto* scene : {"CheckEmail", "MoveHead", "ChooseDocumentType", "ScanIDInstructions",
                              "ScanBackside", "Congrats", "Warning"}) {
      const double time = watch.timeToFrame(
          [&] { stack->pushViewController(from->instantiate(scene).value(), true); });
      (round == 0 ? cold : warm).push_back(time);
      handleEventsFor(0.35);
      stack->popViewController(false);
      handleEventsFor(0.05);
    }
  }
  bench::report("a push to its first frame, cold, p95", percentile95(cold), "ms", 40);
  bench::report("a push to its first frame, warm, p95", percentile95(warm), "ms", 16);
}

void measureSearch(PaintWatch& watch, const UIViewController& host) {
  const auto screen =
      std::dynamic_pointer_cast<ChooseCitizenViewController>(navigation(host)->topViewController());
  screen->tapOnArrow(nullptr);
  handleEventsFor(0.5);
  screen->shouldShowKeyboard = true;
  const auto field = screen->countryTextfield.lock();
  field->becomeFirstResponder();
  const auto type = [&](Qt::Key key, const QString& text) {
    return watch.timeToFrame([&] {
      QKeyEvent press(QEvent::KeyPress, key, {}, text);
      QCoreApplication::sendEvent(QApplication::focusWidget(), &press);
    });
  };
  std::vector<double> times;
  for (int round = 0; round < 20; ++round) {
    for (const char letter : {'u', 'n', 'i', 't', 'e'}) {
      times.push_back(
          type(Qt::Key(Qt::Key_A + (letter - 'a')), QString(QChar::fromLatin1(letter))));
      handleEventsFor(0.02);
    }
    for (int step = 0; step < 5; ++step) {
      times.push_back(type(Qt::Key_Backspace, {}));
      handleEventsFor(0.02);
    }
  }
  bench::report("a key in the search to its frame, p95", percentile95(times), "ms", 8);
}

}  // namespace
}  // namespace kestrova

int main(int count, char** arguments) {
  using namespace kestrova;
  ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  ::setenv("QT_SCALE_FACTOR", "2", 0);
  QApplication application(count, arguments);
  QWidget window;
  window.resize(375, 667);
  window.show();
  handleEventsFor(0.2);
  const auto host = UIViewController::wrapping(window);
  Kestrova::initialize("K");
  PaintWatch watch;
  measureStart(watch, host);
  measureSearch(watch, *host);
  measurePushes(watch, *host);
  host->dismiss(false);
  return bench::allMet ? 0 : 1;
}
