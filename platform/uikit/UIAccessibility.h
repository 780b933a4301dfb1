#pragma once

#include <string>

namespace kestrova::platform {

class UIView;
class UIWindow;

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
  alert,
  // A presented screen. Assistive technology reads its name and texts when the focus comes into it.
  dialog
};

// The posts below tell assistive technology about a change. They do nothing while none is running.
// Main thread.

// Call before another screen comes into `window`. Otherwise a dialog that was read while nothing in
// it had the focus would not be read again.
void postAccessibilityScreenWillChange(const UIWindow& window);
// Another screen has come to rest in `view`'s dialog and has been given the focus. If a view in it
// has the focus, that event has made assistive technology read the dialog; otherwise this does.
void postAccessibilityScreenChanged(const UIView& view);
// Speaks `text` now. Ignored while `view` is not reachable: a screen that leaves is silent.
void postAccessibilityAnnouncement(const UIView& view, const std::string& text);

// The texts inside `view`, in reading order, without the labels of controls; the labels of spinners
// where there is no text.
std::string accessibilityText(const UIView& view);

// The tree that assistive technology sees below and with `view`, a line for each object: two blanks
// for each level, the role, the name between quotes, the states. Main thread.
std::string accessibilityTree(const UIView& view);

}  // namespace kestrova::platform
