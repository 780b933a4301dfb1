#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UILabel;
class UIViewController;
}  // namespace kestrova::platform

namespace kestrova {

struct UIFontExtensions {
  // Registers the SDK's seven typefaces the first time it is called in the process.
  static void loadMyFonts();
  // Registers the typeface `name` of the SDK's bundle. A refusal goes to the system log; a file
  // that is missing or is no typeface is one line on standard output.
  static void loadFontWith(std::string_view name);
};

struct UIColorExtensions {
  static UIColor kestrovaBlue() { return {0, 0.34, 1, 1}; }
  static UIColor borderColorGrey() { return UIColor::white(224.0 / 255, 1); }
  static UIColor deactivatedGrey() { return UIColor::white(0.66, 1); }
};

struct StringExtensions {
  // `inString` in `font` and `color`, the first occurrence of each of `strings` in `boldFont` and
  // `boldColor`. One that does not occur changes nothing.
  static NSAttributedString format(const std::vector<std::string>& strings,
                                   const UIFont& boldFont = UIFont::boldSystemFont(14),
                                   const UIColor& boldColor = UIColor::blue(),
                                   std::string_view inString = {},
                                   const UIFont& font = UIFont::systemFont(14),
                                   const UIColor& color = UIColor::black());
};

// The first character in upper case, the rest in lower case.
std::string capitalizingFirstLetter(std::string_view text);
void capitalizeFirstLetter(std::string& text);

// A tap on the screen's ground ends editing. Loads the screen's view.
void hideKeyboardWhenTappedAround(const std::shared_ptr<UIViewController>& controller);
void hideKeyboard(UIViewController& controller);

// The UTF-16 index of the character of the label's text at `point`, in the label's coordinates; of
// the nearest where there is none. NSNotFound, with a line on standard output, for a label without
// attributed text.
std::size_t indexOfAttributedTextCharacterAtPoint(const UILabel& label, CGPoint point);

}  // namespace kestrova
