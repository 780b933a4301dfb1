#pragma once

#include <memory>

#include "platform/graphics/CGGeometry.h"

class QWidget;

namespace kestrova::platform {

// The thin bar over a scroll view's content that shows its scroll position. Main thread.
class ScrollIndicator {
 public:
  explicit ScrollIndicator(QWidget& scrollView);
  ~ScrollIndicator();
  ScrollIndicator(const ScrollIndicator&) = delete;
  ScrollIndicator& operator=(const ScrollIndicator&) = delete;

  // `track` is in points of the scroll view's widget; `above` and `shown` are the fractions of the
  // content that lie above the visible part and in it. Fades out soon unless `stays`.
  void show(const CGRect& track, double above, double shown, bool stays = false);
  void hide();

 private:
  class Bar;
  struct Owned;
  std::unique_ptr<Owned> owned_;
};

}  // namespace kestrova::platform
