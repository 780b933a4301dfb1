#include "platform/uikit/AnimationClock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <vector>

#include <QtCore/QBasicTimer>
#include <QtCore/QCoreApplication>
#include <QtCore/QTimerEvent>

namespace kestrova::platform {

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

// The toolkit's timer; what it fires is ours.
class Alarm : public QObject {
 public:
  explicit Alarm(std::function<void()> fire) : fire_(std::move(fire)) {}
  void set(double seconds) {
    if (!QCoreApplication::instance()) return;
    timer_.start(int(std::clamp(std::ceil(seconds * 1000), 0.0, 1e6)), Qt::PreciseTimer, this);
  }
  void stop() { timer_.stop(); }

 protected:
  void timerEvent(QTimerEvent* event) override {
    if (event->timerId() != timer_.timerId()) return;
    timer_.stop();
    fire_();
  }

 private:
  QBasicTimer timer_;
  std::function<void()> fire_;
};

double systemTime() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

struct AnimationClock::State {
  struct Entry {
    double due;
    std::weak_ptr<const Tick> tick;
  };

  std::vector<Entry> entries;
  std::optional<double> manual;
  // Made with the first entry, gone with the application.
  std::unique_ptr<Alarm> alarm;
};

AnimationClock& AnimationClock::shared() {
  // Never freed: views may end after the process's other static objects.
  static AnimationClock& clock = *new AnimationClock;
  return clock;
}

AnimationClock::AnimationClock() : state_(std::make_unique<State>()) {}

double AnimationClock::now() const {
  return state_->manual ? *state_->manual : systemTime();
}

AnimationClock::Token AnimationClock::run(double first, Tick tick) {
  auto token = std::make_shared<const Tick>(std::move(tick));
  state_->entries.push_back({first, token});
  schedule();
  return token;
}

AnimationClock::Token AnimationClock::ease(double duration, std::function<void(double)> step) {
  if (duration <= 0) {
    step(1);
    return nullptr;
  }
  const double start = now();
  return run(start + kFrame,
             [start, duration, step = std::move(step)](double time) -> std::optional<double> {
               const double share = std::clamp((time - start) / duration, 0.0, 1.0);
               step(share < 1 ? share * share * (3 - 2 * share) : 1);
               if (share >= 1) return std::nullopt;
               return std::min(time + kFrame, start + duration);
             });
}

bool AnimationClock::isTicking() const {
  return std::any_of(state_->entries.begin(), state_->entries.end(),
                     [](const State::Entry& entry) { return !entry.tick.expired(); });
}

void AnimationClock::useManualTime() {
  if (!state_->manual) state_->manual = systemTime();
  if (state_->alarm) state_->alarm->stop();
}

void AnimationClock::useSystemTime() {
  state_->manual.reset();
  schedule();
}

void AnimationClock::advance(double seconds) {
  const double until = now() + seconds;
  fire(until);
  state_->manual = until;
}

void AnimationClock::fire(double until) {
  // A tick may add others and drop tokens, its own included.
  for (;;) {
    auto& entries = state_->entries;
    std::erase_if(entries, [](const State::Entry& entry) { return entry.tick.expired(); });
    const auto first = std::min_element(entries.begin(), entries.end(),
                                        [](const auto& a, const auto& b) { return a.due < b.due; });
    if (first == entries.end() || first->due > until) return;
    const Token tick = first->tick.lock();
    const double time = state_->manual ? std::max(*state_->manual, first->due) : until;
    if (state_->manual) state_->manual = time;
    entries.erase(first);
    // A loop that the tick opens goes on with the others.
    schedule();
    const auto next = (*tick)(time);
    if (next) state_->entries.push_back({std::max(*next, time + 0.001), tick});
  }
}

void AnimationClock::schedule() {
  if (state_->manual) return;
  double due = kNever;
  for (const auto& entry : state_->entries) {
    if (!entry.tick.expired()) due = std::min(due, entry.due);
  }
  if (due == kNever) {
    if (state_->alarm) state_->alarm->stop();
    return;
  }
  if (!state_->alarm) {
    if (!QCoreApplication::instance()) return;
    state_->alarm = std::make_unique<Alarm>([this] {
      fire(now());
      schedule();
    });
    qAddPostRoutine([] { AnimationClock::shared().state_->alarm.reset(); });
  }
  state_->alarm->set(due - now());
}

}  // namespace kestrova::platform
