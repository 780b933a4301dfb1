#include "platform/uikit/CAGradientLayer.h"

#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

void CAGradientLayer::drawInside(Canvas& canvas, CGSize size) const {
  if (!colors_.empty()) canvas.fillGradient({{}, size}, colors_, cornerRadius());
}

}  // namespace kestrova::platform
