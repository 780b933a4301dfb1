#pragma once

#include <string_view>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

class UIView;

// Posted to the default notification centre as a keyboard on the screen comes, changes its place,
// and goes. The user information holds its rectangle in points, a CGRect, under the key below; that
// of a keyboard that goes is where it was last.
inline constexpr std::string_view UIKeyboardWillShowNotification = "UIKeyboardWillShowNotification";
inline constexpr std::string_view UIKeyboardWillHideNotification = "UIKeyboardWillHideNotification";
inline constexpr std::string_view UIKeyboardFrameBeginUserInfoKey =
    "UIKeyboardFrameBeginUserInfoKey";

// The toolkit's input method, watched from the first text field on. A desk keyboard shows nothing
// on the screen and posts nothing. Main thread.
class UIKeyboard {
 public:
  static UIKeyboard& shared();

  // Watches the input method of the running application.
  void watch();
  // Whether it is visible, and where. What changes again while observers are told is told to them
  // afterwards.
  void inputMethodChanged(bool visible, const CGRect& rectangle);
  // Points of a view's lower edge that the keyboard covers; 0 while no keyboard is on the screen.
  double coveredHeight(const UIView& view) const;

 private:
  UIKeyboard() = default;
  void post(std::string_view name) const;

  bool isWatching_ = false;
  bool isPosting_ = false;
  // What was reported last, and what observers know.
  bool isVisible_ = false;
  CGRect rectangle_;
  bool isShown_ = false;
  CGRect shownAt_;
};

}  // namespace kestrova::platform
