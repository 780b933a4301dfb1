#include "platform/uikit/CAShapeLayer.h"

#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

void CAShapeLayer::drawInside(Canvas& canvas, CGSize) const {
  if (!path_) return;
  if (fillColor_) canvas.fill(*path_, *fillColor_);
  if (!strokeColor_ || lineWidth_ <= 0) return;
  const double end = presentationValue("strokeEnd").value_or(strokeEnd_);
  if (end > 0) canvas.stroke(*path_, *strokeColor_, lineWidth_, end);
}

}  // namespace kestrova::platform
