#pragma once

#include <functional>
#include <memory>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class UIView;

// The memory of snapshots that have ended, for the next ones of the same size: fresh memory costs
// more time than the drawing.
class SnapshotMemory {
 public:
  struct Pictures;

  SnapshotMemory();
  ~SnapshotMemory();
  SnapshotMemory(const SnapshotMemory&) = delete;
  SnapshotMemory& operator=(const SnapshotMemory&) = delete;

 private:
  friend class Snapshot;
  std::unique_ptr<Pictures> spare_;
};

// A still picture of a view, as it is on the screen.
class Snapshot {
 public:
  struct Picture;

  // `rect` in the view's coordinates.
  static std::shared_ptr<const Snapshot> of(const UIView& view, const CGRect& rect);
  // On white.
  static std::shared_ptr<const Snapshot> opaque(const UIView& view, const CGRect& rect,
                                                const std::shared_ptr<SnapshotMemory>& memory = {});
  Snapshot();
  ~Snapshot();
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;
  const Picture& picture() const { return *picture_; }

 private:
  std::unique_ptr<Picture> picture_;
  std::weak_ptr<SnapshotMemory> memory_;
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
