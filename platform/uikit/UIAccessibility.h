#pragma once

#include <string>

namespace kestrova::platform {

class UIView;

// What a view is to assistive technology. `none` is a mere container.
enum class UIAccessibilityRole {
  none,
  staticText,
  header,
  image,
  button,
  link,
  textField,
  list,
  listItem,
  busy,
  alert
};

// The tree that assistive technology sees below and with `view`, a line for each object: two blanks
// for each level, the role, the name between quotes, the states. Main thread.
std::string accessibilityTree(const UIView& view);

}  // namespace kestrova::platform
