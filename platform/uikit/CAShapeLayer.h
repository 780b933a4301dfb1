#pragma once

#include <optional>

#include "platform/uikit/CALayer.h"
#include "platform/uikit/UIBezierPath.h"

namespace kestrova::platform {

// A layer that draws a path.
class CAShapeLayer : public CALayer {
 public:
  const std::optional<CGPath>& path() const { return path_; }
  void setPath(const std::optional<CGPath>& path) { change(path_, path); }
  // Black at first; none leaves the inside free.
  const std::optional<UIColor>& fillColor() const { return fillColor_; }
  void setFillColor(const std::optional<UIColor>& color) { change(fillColor_, color); }
  const std::optional<UIColor>& strokeColor() const { return strokeColor_; }
  void setStrokeColor(const std::optional<UIColor>& color) { change(strokeColor_, color); }
  // Points.
  double lineWidth() const { return lineWidth_; }
  void setLineWidth(double width) { change(lineWidth_, width); }
  // The fraction of the path at which the stroke ends.
  double strokeEnd() const { return strokeEnd_; }
  void setStrokeEnd(double end) { change(strokeEnd_, end); }

 protected:
  void drawInside(Canvas& canvas, CGSize size) const override;

 private:
  std::optional<CGPath> path_;
  std::optional<UIColor> fillColor_ = UIColor::black();
  std::optional<UIColor> strokeColor_;
  double lineWidth_ = 1;
  double strokeEnd_ = 1;
};

}  // namespace kestrova::platform
