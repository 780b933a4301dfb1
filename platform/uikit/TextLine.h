#pragma once

namespace kestrova::platform {

class NSAttributedString;
class NSLayoutManager;

struct TextLine {
  // Wider and higher than any screen, points.
  static constexpr double kUnbounded = 1e6;

  // Lays `text` on one line, which is cut with an ellipsis where it is wider than `width` points.
  static void lay(const NSAttributedString& text, double width, NSLayoutManager& manager);
};

}  // namespace kestrova::platform
