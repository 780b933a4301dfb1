#pragma once

#include <functional>
#include <memory>
#include <optional>

namespace kestrova::platform {

// The one clock behind everything that moves on screen; it wakes the process only while something
// does. Main thread.
class AnimationClock {
 public:
  // Seconds between two pictures of a continuous motion.
  static constexpr double kFrame = 1.0 / 60;

  // Called with the time; the answer is the time of the next call, none to end.
  using Tick = std::function<std::optional<double>(double now)>;
  // A tick is called as long as its token lives.
  using Token = std::shared_ptr<const Tick>;

  static AnimationClock& shared();

  // Seconds since some moment in the past.
  double now() const;
  // Calls `tick` at the time `first`, and then as it answers.
  [[nodiscard]] Token run(double first, Tick tick);
  // Moves a share from 0 to 1, eased, over `duration` seconds, beginning with the next picture.
  // `step` with 1 is the last call; in a `duration` of 0 it is called at once.
  [[nodiscard]] Token ease(double duration, std::function<void(double share)> step);

  // Whether a tick waits for its time.
  bool isTicking() const;

  // For tests: time stands still but for advance(), which calls the ticks that fall due, in order.
  void useManualTime();
  void advance(double seconds);
  void useSystemTime();

  AnimationClock(const AnimationClock&) = delete;
  AnimationClock& operator=(const AnimationClock&) = delete;

 private:
  struct State;

  AnimationClock();
  ~AnimationClock() = default;
  void fire(double until);
  void schedule();

  std::unique_ptr<State> state_;
};

}  // namespace kestrova::platform
