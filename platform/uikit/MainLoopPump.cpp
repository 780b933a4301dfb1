#include "platform/uikit/MainLoopPump.h"

#include <algorithm>
#include <mutex>

#include <QtCore/QBasicTimer>
#include <QtCore/QCoreApplication>
#include <QtCore/QTimerEvent>

#include "platform/dispatch/MainLoop.h"

namespace kestrova::platform {

struct MainLoopPump::Bell {
  std::mutex mutex;
  // Null when the pump has ended.
  Receiver* receiver = nullptr;
  // Whether an event is on its way.
  bool isRung = false;

  void ring();
};

// Every drain begins in a timer, so that blocks that post blocks leave the loop its other events.
class MainLoopPump::Receiver : public QObject {
 public:
  explicit Receiver(Bell& bell) : bell_(bell) { timer_.start(0, this); }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    {
      const std::lock_guard lock(bell_.mutex);
      bell_.isRung = false;
    }
    timer_.start(0, this);
    return true;
  }

  void timerEvent(QTimerEvent*) override {
    // A nested loop that a block opens drains at once, what is due later included.
    timer_.start(0, this);
    const auto next = MainLoop::drain();
    if (!next) return timer_.stop();
    const auto left =
        *next == DispatchClock::time_point::min()
            ? std::chrono::milliseconds::zero()
            : std::chrono::ceil<std::chrono::milliseconds>(*next - DispatchClock::now());
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24);
    const auto wait = std::clamp(left, std::chrono::milliseconds::zero(), kLongest);
    timer_.start(int(wait.count()), Qt::PreciseTimer, this);
  }

 private:
  Bell& bell_;
  QBasicTimer timer_;
};

void MainLoopPump::Bell::ring() {
  const std::lock_guard lock(mutex);
  if (!receiver || isRung) return;
  isRung = true;
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the toolkit takes it over.
  QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
}

MainLoopPump::MainLoopPump() : bell_(std::make_shared<Bell>()) {
  receiver_ = std::make_unique<Receiver>(*bell_);
  bell_->receiver = receiver_.get();
  MainLoop::attach([bell = bell_] { bell->ring(); });
}

MainLoopPump::~MainLoopPump() {
  MainLoop::detach();
  const std::lock_guard lock(bell_->mutex);
  bell_->receiver = nullptr;
}

}  // namespace kestrova::platform
