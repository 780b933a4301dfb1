#pragma once

#include <memory>

namespace kestrova::platform {

class UIWindow;

// The blue line around the view of a window that has the keyboard's focus, while the keyboard is in
// use. Main thread.
class FocusRing {
 public:
  explicit FocusRing(UIWindow& window);
  ~FocusRing();
  FocusRing(const FocusRing&) = delete;
  FocusRing& operator=(const FocusRing&) = delete;

  // True when the last input was a key; false if there was none since the first ring was made.
  static bool isKeyboardInUse();

 private:
  class Ring;
  struct Owned;
  std::unique_ptr<Owned> owned_;
};

}  // namespace kestrova::platform
