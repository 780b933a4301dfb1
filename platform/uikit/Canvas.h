#pragma once

#include <vector>

#include "platform/graphics/CGGeometry.h"
#include "platform/graphics/UIColor.h"

namespace kestrova::platform {

class CGPath;
class NSLayoutManager;
class UIImage;
struct NativePainter;

// What a view draws on: its own points, the upper left corner at the origin, edges smooth. Lasts
// for one drawing.
class Canvas {
 public:
  explicit Canvas(NativePainter& painter) : painter_(painter) {}
  ~Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  void fill(const CGRect& rect, const UIColor& color, double cornerRadius = 0);
  // The line lies inside the rectangle.
  void stroke(const CGRect& rect, const UIColor& color, double lineWidth, double cornerRadius = 0);
  void fill(const CGPath& path, const UIColor& color);
  // `end` is the fraction of the path's length that is drawn. Round ends.
  void stroke(const CGPath& path, const UIColor& color, double lineWidth, double end = 1);
  // From top to bottom.
  void fillGradient(const CGRect& rect, const std::vector<UIColor>& colors,
                    double cornerRadius = 0);
  void draw(const UIImage& image, const CGRect& rect);
  // The container's upper left corner at `origin`.
  void draw(const NSLayoutManager& text, CGPoint origin);
  // A soft shadow of a rounded rectangle, without the rectangle.
  void shadow(const CGRect& rect, double cornerRadius, double blur, const UIColor& color);

  // Nests; restore() takes back what followed the last save().
  void save();
  void restore();
  void translate(double x, double y);
  // About `center`, clockwise.
  void rotate(double radians, CGPoint center);
  void clip(const CGRect& rect, double cornerRadius = 0);
  // For what follows, of the opacity so far.
  void setOpacity(double opacity);

 private:
  NativePainter& painter_;
};

}  // namespace kestrova::platform
