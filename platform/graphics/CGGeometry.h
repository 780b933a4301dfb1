#pragma once

namespace kestrova::platform {

// Lengths are points unless said otherwise.

struct CGPoint {
  double x = 0;
  double y = 0;

  friend bool operator==(const CGPoint&, const CGPoint&) = default;
};

struct CGSize {
  double width = 0;
  double height = 0;

  friend bool operator==(const CGSize&, const CGSize&) = default;
};

struct CGRect {
  CGPoint origin;
  CGSize size;

  double minX() const { return origin.x; }
  double midX() const { return origin.x + size.width / 2; }
  double maxX() const { return origin.x + size.width; }
  double minY() const { return origin.y; }
  double midY() const { return origin.y + size.height / 2; }
  double maxY() const { return origin.y + size.height; }

  // The left and top edges belong to the rectangle, the right and bottom ones do not.
  bool contains(CGPoint point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
  }
  // Smaller by `dx` on the left and right and by `dy` above and below.
  CGRect insetBy(double dx, double dy) const {
    return {{origin.x + dx, origin.y + dy}, {size.width - 2 * dx, size.height - 2 * dy}};
  }

  friend bool operator==(const CGRect&, const CGRect&) = default;
};

// Maps (x, y) to (a x + c y + tx, b x + d y + ty).
struct CGAffineTransform {
  double a = 1;
  double b = 0;
  double c = 0;
  double d = 1;
  double tx = 0;
  double ty = 0;

  static constexpr CGAffineTransform identity() { return {}; }
  static constexpr CGAffineTransform scale(double x, double y) { return {x, 0, 0, y, 0, 0}; }
  static constexpr CGAffineTransform translation(double x, double y) { return {1, 0, 0, 1, x, y}; }

  CGPoint apply(CGPoint point) const {
    return {a * point.x + c * point.y + tx, b * point.x + d * point.y + ty};
  }
  // This transform first, then `next`.
  CGAffineTransform concatenating(const CGAffineTransform& next) const {
    return {next.a * a + next.c * b,
            next.b * a + next.d * b,
            next.a * c + next.c * d,
            next.b * c + next.d * d,
            next.a * tx + next.c * ty + next.tx,
            next.b * tx + next.d * ty + next.ty};
  }

  friend bool operator==(const CGAffineTransform&, const CGAffineTransform&) = default;
};

}  // namespace kestrova::platform
