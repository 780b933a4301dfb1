#pragma once

#include <variant>
#include <vector>

#include "platform/graphics/CGGeometry.h"

namespace kestrova::platform {

// An outline in points. A value; any thread.
class CGPath {
 public:
  struct Move {
    CGPoint to;
    friend bool operator==(const Move&, const Move&) = default;
  };
  struct Line {
    CGPoint to;
    friend bool operator==(const Line&, const Line&) = default;
  };
  // The whole ellipse inscribed in `rect`, from the top, clockwise.
  struct Ellipse {
    CGRect rect;
    friend bool operator==(const Ellipse&, const Ellipse&) = default;
  };
  using Element = std::variant<Move, Line, Ellipse>;

  const std::vector<Element>& elements() const { return elements_; }
  void append(Element element) { elements_.push_back(element); }

  friend bool operator==(const CGPath&, const CGPath&) = default;

 private:
  std::vector<Element> elements_;
};

// Builds paths.
class UIBezierPath {
 public:
  UIBezierPath() = default;
  static UIBezierPath ovalIn(const CGRect& rect);

  void move(CGPoint to) { path_.append(CGPath::Move{to}); }
  void addLine(CGPoint to) { path_.append(CGPath::Line{to}); }
  const CGPath& cgPath() const { return path_; }

 private:
  CGPath path_;
};

}  // namespace kestrova::platform
