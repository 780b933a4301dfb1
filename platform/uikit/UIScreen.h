#pragma once

#include <optional>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

// The place that the interface has. Main thread.
class UIScreen {
 public:
  static UIScreen& main();

  // Where the flow is presented, or would be on the primary screen. Empty without an application
  // object.
  CGRect bounds() const;
  // By the presentation; none for as long as nothing is presented.
  void setBounds(const std::optional<CGRect>& bounds) { bounds_ = bounds; }

 private:
  UIScreen() = default;

  std::optional<CGRect> bounds_;
};

}  // namespace kestrova::platform
