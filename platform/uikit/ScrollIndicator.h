#pragma once

#include <memory>

#include "platform/graphics/CGGeometry.h"

class QWidget;

namespace kestrova::platform {

// The thin bar that says how far a scroll view is scrolled, over its content. Main thread.
class ScrollIndicator {
 public:
  explicit ScrollIndicator(QWidget& scrollView);
  ~ScrollIndicator();
  ScrollIndicator(const ScrollIndicator&) = delete;
  ScrollIndicator& operator=(const ScrollIndicator&) = delete;

  // The way that the bar can take, in points of the scroll view's widget, and the share of the
  // content that is above what is shown, and that is shown. Fades soon unless it stays.
  void show(const CGRect& track, double above, double shown, bool stays = false);
  void hide();

 private:
  class Bar;
  struct Owned;
  std::unique_ptr<Owned> owned_;
};

}  // namespace kestrova::platform
