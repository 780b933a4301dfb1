#pragma once

#include <functional>
#include <memory>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class UIView;

// A still picture of a view, as it is on the screen.
class Snapshot {
 public:
  struct Picture;

  // `rect` in the view's coordinates; on white where `isOpaque`.
  static std::shared_ptr<const Snapshot> of(const UIView& view, const CGRect& rect,
                                            bool isOpaque = false);
  const Picture& picture() const { return *picture_; }

 private:
  std::unique_ptr<Picture> picture_;
};

// Pictures of screens that move over a view and cover it meanwhile; touches end there. Main thread.
class Transition {
 public:
  enum class Kind { push, pop, rise, sink, fadeIn, fadeOut };
  static constexpr double kPushDuration = 0.30;
  static constexpr double kSheetDuration = 0.35;
  static constexpr double kFadeDuration = 0.20;

  // Moves `from` away and `to` in, within `rect` of `over`; either may be null. Where the desktop
  // wants less motion it cross-fades. `step` is called with each share of the way, `completion`
  // after the last, or when finish() ends it early.
  static std::shared_ptr<Transition> run(UIView& over, const CGRect& rect, double cornerRadius,
                                         Kind kind, std::shared_ptr<const Snapshot> from,
                                         std::shared_ptr<const Snapshot> to,
                                         std::function<void(double share)> step,
                                         std::function<void()> completion);
  ~Transition();
  Transition(const Transition&) = delete;
  Transition& operator=(const Transition&) = delete;

  // Ends it at once.
  void finish();

 private:
  class Cover;
  struct Owned;
  Transition();

  std::unique_ptr<Owned> owned_;
  std::shared_ptr<const void> motion_;
  std::function<void()> completion_;
};

}  // namespace kestrova::platform
