#pragma once

#include <cstddef>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

enum class NSLineBreakMode {
  byWordWrapping,
  byCharWrapping,
  // One line a paragraph, cut off at the edge.
  byClipping,
  // As byWordWrapping, with "…" at the end of the last line where the text goes on.
  byTruncatingTail,
};

// The area that a text is laid out in.
struct NSTextContainer {
  CGSize size;
  // Kept free at the left and right of every line, in points.
  double lineFragmentPadding = 5;
  // 0 for as many as there are.
  std::size_t maximumNumberOfLines = 0;
  NSLineBreakMode lineBreakMode = NSLineBreakMode::byWordWrapping;
  // The least distance from line to line, in points, with the text in the middle of it.
  double minimumLineHeight = 0;

  friend bool operator==(const NSTextContainer&, const NSTextContainer&) = default;
};

}  // namespace kestrova::platform
