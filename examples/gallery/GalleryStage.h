#pragma once

#include <memory>
#include <string>

#include "platform/graphics/CGGeometry.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UINavigationController;
class UIViewController;
class UIWindow;
}  // namespace kestrova::platform

namespace kestrova::gallery {

// A window with the list of pages and, on top of it, one page where there is one. Needs the
// application object, and for a still page the AnimationClock's manual time.
class GalleryStage {
 public:
  GalleryStage(CGSize size, const std::shared_ptr<UIViewController>& page);
  ~GalleryStage();
  GalleryStage(const GalleryStage&) = delete;
  GalleryStage& operator=(const GalleryStage&) = delete;

  UIWindow& window() { return *window_; }
  // Lets time pass on the manual clock, and events be handled.
  static void settle(double seconds);
  // Writes what is seen, as a PNG file of the screen's scale; false where it cannot be written.
  bool save(const std::string& file) const;

 private:
  std::shared_ptr<UIWindow> window_;
  std::shared_ptr<UINavigationController> stack_;
};

}  // namespace kestrova::gallery
