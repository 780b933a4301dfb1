// The live picture of a camera of 1280 x 720 pixels and 30 frames a second, a video file in real
// time, for ten seconds: frames drawn, and how long an event waits for the main thread meanwhile.

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include "bench/Report.h"
#include "bench/capture/Media.h"
#include "bench/capture/Phone.h"
#include "examples/enduser/UsableButton.h"
#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraPreviewView.h"
#include "platform/capture/UIImagePickerController.h"

namespace kestrova::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kTime = std::chrono::seconds(10);
constexpr auto kBetween = std::chrono::milliseconds(1);

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// Counts how often a widget is painted.
class PaintCount : public QObject {
 public:
  explicit PaintCount(QWidget& widget) : widget_(widget) { qApp->installEventFilter(this); }

  bool eventFilter(QObject* object, QEvent* event) override {
    if (object == &widget_ && event->type() == QEvent::Paint) ++count;
    return false;
  }

  int count = 0;

 private:
  QWidget& widget_;
};

// Events that come each millisecond, whatever becomes of those before; and how long each waited.
class Pulse : public QObject {
 public:
  void run() {
    waits.reserve(std::size_t(kTime / kBetween));
    std::thread thread([this] {
      const auto end = Clock::now() + kTime;
      for (auto due = Clock::now(); due < end; due += kBetween) {
        std::this_thread::sleep_until(due);
        QCoreApplication::postEvent(this, new Beat);
      }
    });
    handleEventsFor(kTime + std::chrono::milliseconds(200));
    thread.join();
  }

  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    waits.push_back(milliseconds(Clock::now() - static_cast<Beat*>(event)->posted));
    return true;
  }

  std::vector<double> waits;

 private:
  struct Beat : QEvent {
    Beat() : QEvent(QEvent::User) {}
    const Clock::time_point posted = Clock::now();
  };
};

std::shared_ptr<CameraPreviewView> previewIn(const UIView& view) {
  for (const auto& below : view.subviews()) {
    if (auto preview = std::dynamic_pointer_cast<CameraPreviewView>(below)) return preview;
    if (auto preview = previewIn(*below)) return preview;
  }
  return nullptr;
}

void measure(const Phone& phone) {
  const auto picker = std::make_shared<UIImagePickerController>();
  picker->sourceType = UIImagePickerControllerSourceType::camera;
  phone.host->present(picker, true);
  await("the live picture", [&] { return usableButton(*picker->view(), "Take photo") != nullptr; });
  handleEventsFor(std::chrono::seconds(1));

  PaintCount frames(*previewIn(*picker->view())->widget());
  Pulse pulse;
  pulse.run();
  const double rate = double(frames.count) /
                      std::chrono::duration<double>(kTime + std::chrono::milliseconds(200)).count();
  std::ranges::sort(pulse.waits);
  report("frames shown", rate, "a s", 29.5, false);
  std::printf("%-46s %9.2f ms\n", "an event waits for the main thread, median",
              pulse.waits[pulse.waits.size() / 2]);
  report("an event waits for the main thread, p99", pulse.waits[pulse.waits.size() * 99 / 100],
         "ms", 16);
  report("an event waits for the main thread, longest", pulse.waits.back(), "ms", 33);
  phone.host->dismiss(false);
  handleEventsFor(std::chrono::milliseconds(200));
}

}  // namespace
}  // namespace kestrova::bench

int main(int count, char** arguments) {
  using namespace kestrova;
  bench::setUpDisplay();
  const test::TemporaryDirectory folder;
  // Longer than is watched: a camera does not begin again.
  bench::makeVideo(folder.path(), 14);
  QApplication application(count, arguments);
  const bench::Phone phone;
  CameraConfiguration cameras;
  cameras.rear = folder.path() / "video.mov";
  CameraConfiguration::set(cameras);
  bench::measure(phone);
  CameraConfiguration::set({});
  return bench::allMet ? 0 : 1;
}
