#include "sdk/flow/DocumentCardCollView.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

namespace {

constexpr double kChosenBorderWidth = 3;

}  // namespace

void DocumentCardCollView::bind(UIBindings& bindings) {
  bindings.property("cornerRadius", cornerRadius);
  bindings.property("borderWidth", borderWidth);
}

void DocumentCardCollView::layoutSubviews() {
  UIView::layoutSubviews();
  layer().setCornerRadius(cornerRadius);
  applyBorder();
}

void DocumentCardCollView::setChosen(bool chosen) {
  isChosen_ = chosen;
  applyBorder();
}

void DocumentCardCollView::applyBorder() {
  layer().setBorderWidth(isChosen_ ? kChosenBorderWidth : double{borderWidth});
  layer().setBorderColor(isChosen_ ? UIColorExtensions::kestrovaBlue() : UIColor::white(0.87, 1));
}

}  // namespace kestrova
