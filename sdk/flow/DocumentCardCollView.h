#pragma once

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// A card with round corners and a border: grey, or blue and wider while the card is chosen.
class DocumentCardCollView : public UIView {
 public:
  // Points, of a card that is not chosen; a storyboard may set both.
  double cornerRadius = 4;
  float borderWidth = 1.5F;

  void bind(UIBindings& bindings) override;
  void layoutSubviews() override;

  // Takes effect at once and outlives layout passes.
  void setChosen(bool chosen);

 private:
  void applyBorder();

  bool isChosen_ = false;
};

}  // namespace kestrova
