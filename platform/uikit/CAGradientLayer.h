#pragma once

#include <vector>

#include "platform/foundation/Export.h"
#include "platform/uikit/CALayer.h"

namespace kestrova::platform {

// A layer of colours that run into each other from top to bottom.
class KESTROVA_EXPORT CAGradientLayer : public CALayer {
 public:
  // One colour covers the whole layer.
  const std::vector<UIColor>& colors() const { return colors_; }
  void setColors(const std::vector<UIColor>& colors) { change(colors_, colors); }

 protected:
  void drawInside(Canvas& canvas, CGSize size) const override;

 private:
  std::vector<UIColor> colors_;
};

}  // namespace kestrova::platform
