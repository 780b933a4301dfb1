#include "sdk/flow/DocumentCardCollView.h"

#include "platform/uikit/UIBindings.h"

namespace kestrova {

void DocumentCardCollView::bind(UIBindings& bindings) {
  bindings.property("cornerRadius", cornerRadius);
  bindings.property("borderWidth", borderWidth);
}

void DocumentCardCollView::layoutSubviews() {
  UIView::layoutSubviews();
  layer().setCornerRadius(cornerRadius);
  layer().setBorderWidth(double{borderWidth});
  layer().setBorderColor(borderGrey());
}

}  // namespace kestrova
