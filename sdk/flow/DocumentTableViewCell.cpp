#include "sdk/flow/DocumentTableViewCell.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

void DocumentTableViewCell::bind(UIBindings& bindings) {
  bindings.outlet("documentIcon", documentIcon);
  bindings.outlet("documentName", documentName);
  bindings.outlet("selectionCheckmark", selectionCheckmark);
  bindings.outlet("cardView", cardView);
}

void DocumentTableViewCell::awakeFromNib() {
  UITableViewCell::awakeFromNib();
}

void DocumentTableViewCell::setSelected(bool selected, bool animated) {
  UITableViewCell::setSelected(selected, animated);
  if (const auto mark = selectionCheckmark.lock()) mark->setHidden(!selected);
  const auto card = cardView.lock();
  if (!card) return;
  card->layer().setBorderColor(selected ? UIColorExtensions::kestrovaBlue()
                                        : DocumentCardCollView::borderGrey());
  card->layer().setBorderWidth(selected ? 3 : 1.5);
}

}  // namespace kestrova
