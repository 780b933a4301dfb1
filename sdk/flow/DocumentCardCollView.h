#pragma once

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// A card with a round grey edge.
class DocumentCardCollView : public UIView {
 public:
  // Of a card that is not chosen.
  static UIColor borderGrey() { return UIColor::white(0.87, 1); }

  // Points; a storyboard may set both.
  double cornerRadius = 4;
  float borderWidth = 1.5F;

  void bind(UIBindings& bindings) override;
  void layoutSubviews() override;
};

}  // namespace kestrova
