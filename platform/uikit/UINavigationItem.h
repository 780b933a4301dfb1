#pragma once

#include <string>

namespace kestrova::platform {

// What the navigation bar shows for a controller. A value;
// UIViewController::navigationItemChanged() tells the bar of changes.
struct UINavigationItem {
  std::string title;
  // No way back to the screen below.
  bool hidesBackButton = false;

  friend bool operator==(const UINavigationItem&, const UINavigationItem&) = default;
};

}  // namespace kestrova::platform
