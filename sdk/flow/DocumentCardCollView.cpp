#include "sdk/flow/DocumentCardCollView.h"

namespace kestrova {

void DocumentCardCollView::layoutSubviews() {
  UIView::layoutSubviews();
  layer().setCornerRadius(cornerRadius);
  layer().setBorderWidth(double{borderWidth});
  layer().setBorderColor(borderGrey());
}

}  // namespace kestrova
